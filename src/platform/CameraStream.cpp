#include "platform/CameraStream.h"

#include "platform/CameraOffers.h"
#include "platform/LoopEvent.h"
#include "platform/PipeWire.h"

#include <cerrno>
#include <spa/param/buffers.h>
#include <spa/param/param.h>
#include <spa/pod/builder.h>
#include <spa/utils/result.h>
#include <utility>

namespace vantry {

using namespace std::chrono_literals;

namespace {

/// A stamp further away from now was not read from this clock.
constexpr HostDuration oldestStamp = 10s;
constexpr HostDuration latestStamp = 1s;

constexpr std::size_t mostPlanes = 4;

HostTime takenAt(const spa_meta_header* header, HostTime arrival)
{
    if (!header || header->pts <= 0)
        return arrival;
    const HostTime stamp{ HostDuration(header->pts) };
    return stamp < arrival - oldestStamp || stamp > arrival + latestStamp ? arrival : stamp;
}

CameraMemory memoryOf(const spa_data& data)
{
    if (!data.data || !data.chunk || (data.chunk->flags & SPA_CHUNK_FLAG_CORRUPTED))
        return {};
    const auto offset = std::min(data.chunk->offset, data.maxsize);
    const auto size = std::min(data.chunk->size, data.maxsize - offset);
    return { { static_cast<const std::uint8_t*>(data.data) + offset, size }, data.chunk->stride };
}

} // namespace

/// Everything belongs to the loop's thread.
class CameraStream::Impl {
public:
    Impl(PipeWireLoop& loop, const std::string& camera, Handlers handlers);
    ~Impl();

private:
    void open(const std::string& camera);
    int connect(const std::string& camera);
    void end();
    void changeState(pw_stream_state state, const char* error);
    void changeFormat(const spa_pod& format);
    void askForBuffers();
    void process();
    void deliver(const spa_buffer& buffer);
    void fail(const std::string& reason);

    static const pw_stream_events events;

    PipeWireLoop& m_loop;
    const Handlers m_handlers;
    std::optional<CameraMode> m_mode;
    bool m_isConnected = false;
    bool m_hasEnded = false; ///< No handler is called any more.
    std::optional<pw::LoopEvent> m_arrival; ///< Of a frame. The library's own way of telling would fill its queue of calls.
    pw::StreamPtr m_stream;
    spa_hook m_hook{}; ///< The stream ends it.
};

const pw_stream_events CameraStream::Impl::events = {
    .version = PW_VERSION_STREAM_EVENTS,
    .state_changed = [](void* self, pw_stream_state, pw_stream_state state,
                         const char* error) { static_cast<Impl*>(self)->changeState(state, error); },
    .param_changed =
        [](void* self, std::uint32_t id, const spa_pod* parameter) {
            if (parameter && id == SPA_PARAM_Format)
                static_cast<Impl*>(self)->changeFormat(*parameter);
        },
    // On the media library's own thread.
    .process = [](void* self) { static_cast<Impl*>(self)->m_arrival->signal(); },
};

CameraStream::Impl::Impl(PipeWireLoop& loop, const std::string& camera, Handlers handlers)
    : m_loop(loop)
    , m_handlers(std::move(handlers))
{
    m_loop.invoke([&] { open(camera); });
}

CameraStream::Impl::~Impl()
{
    m_loop.invoke([this] { end(); });
}

void CameraStream::Impl::open(const std::string& camera)
{
    m_arrival.emplace(m_loop.loop(), [this] { process(); });
    const int result = connect(camera);
    if (result >= 0)
        return;
    end();
    throw AppError(std::string("The camera cannot be opened: ") + spa_strerror(result));
}

int CameraStream::Impl::connect(const std::string& camera)
{
    auto* properties = pw_properties_new(PW_KEY_MEDIA_TYPE, "Video", PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_MEDIA_ROLE, "Camera",
        PW_KEY_TARGET_OBJECT, camera.c_str(), PW_KEY_NODE_DONT_RECONNECT, "true", nullptr);
    m_stream.reset(pw_stream_new(m_loop.core(), "camera", properties));
    if (!m_stream)
        return -errno;
    pw_stream_add_listener(m_stream.get(), &m_hook, &events, this);
    CameraOffers offers;
    const auto flags =
        static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
    return pw_stream_connect(m_stream.get(), PW_DIRECTION_INPUT, PW_ID_ANY, flags, offers.list().data(),
        static_cast<std::uint32_t>(offers.list().size()));
}

void CameraStream::Impl::end()
{
    m_hasEnded = true;
    if (m_stream)
        pw_stream_disconnect(m_stream.get()); // Nobody tells of frames any more.
    m_stream.reset();
    m_arrival.reset();
}

void CameraStream::Impl::changeState(pw_stream_state state, const char* error)
{
    if (state == PW_STREAM_STATE_ERROR)
        fail(error ? error : "error");
    if (state == PW_STREAM_STATE_UNCONNECTED && m_isConnected)
        fail("it is gone");
    m_isConnected = state != PW_STREAM_STATE_UNCONNECTED;
}

void CameraStream::Impl::fail(const std::string& reason)
{
    if (std::exchange(m_hasEnded, true) || !m_handlers.onFailed)
        return;
    m_handlers.onFailed(AppError("The camera cannot be used: " + reason));
}

void CameraStream::Impl::changeFormat(const spa_pod& format)
{
    if (m_hasEnded)
        return;
    m_mode = cameraMode(format);
    if (!m_mode)
        return fail("its pictures have an unknown format");
    askForBuffers();
    if (m_handlers.onMode)
        m_handlers.onMode(*m_mode);
}

/// A buffer has a stamp only when both sides want one.
void CameraStream::Impl::askForBuffers()
{
    std::array<std::uint8_t, 1024> memory;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    const void* parameters[] = {
        spa_pod_builder_add_object(&builder, SPA_TYPE_OBJECT_ParamBuffers, SPA_PARAM_Buffers, SPA_PARAM_BUFFERS_buffers,
            SPA_POD_CHOICE_RANGE_Int(6, 2, 16), SPA_PARAM_BUFFERS_dataType,
            SPA_POD_CHOICE_FLAGS_Int((1 << SPA_DATA_MemPtr) | (1 << SPA_DATA_MemFd))),
        spa_pod_builder_add_object(&builder, SPA_TYPE_OBJECT_ParamMeta, SPA_PARAM_Meta, SPA_PARAM_META_type,
            SPA_POD_Id(SPA_META_Header), SPA_PARAM_META_size, SPA_POD_Int(sizeof(spa_meta_header))),
    };
    pw_stream_update_params(m_stream.get(), reinterpret_cast<const spa_pod**>(parameters), std::size(parameters));
}

void CameraStream::Impl::process()
{
    while (pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream.get())) {
        deliver(*buffer->buffer);
        pw_stream_queue_buffer(m_stream.get(), buffer);
    }
}

void CameraStream::Impl::deliver(const spa_buffer& buffer)
{
    const auto arrival = HostClock::now();
    const auto* header =
        static_cast<const spa_meta_header*>(spa_buffer_find_meta_data(&buffer, SPA_META_Header, sizeof(spa_meta_header)));
    if (!m_mode || m_hasEnded || (header && (header->flags & SPA_META_HEADER_FLAG_CORRUPTED)))
        return;
    std::array<CameraMemory, mostPlanes> memory;
    const auto count = std::min<std::size_t>(buffer.n_datas, mostPlanes);
    for (std::size_t i = 0; i < count; ++i)
        memory[i] = memoryOf(buffer.datas[i]);
    if (const auto frame = findPlanes(*m_mode, std::span(memory).first(count), takenAt(header, arrival)))
        m_handlers.onFrame(*frame);
}

CameraStream::CameraStream(PipeWireLoop& loop, const std::string& camera, Handlers handlers)
    : m_impl(std::make_unique<Impl>(loop, camera, std::move(handlers)))
{
}

CameraStream::~CameraStream() = default;

} // namespace vantry
