#include "platform/MicrophoneStream.h"

#include "platform/PipeWire.h"

#include <array>
#include <cerrno>
#include <spa/param/audio/format-utils.h>
#include <spa/utils/result.h>
#include <utility>

namespace vantry {

namespace {

/// With shorter cycles a busy machine misses some of them.
constexpr const char* cycle = "2048/48000";

HostDuration lengthOf(std::size_t samples)
{
    return HostDuration(std::chrono::seconds(1)) * static_cast<std::int64_t>(samples) / MicrophoneStream::sampleRate;
}

/// When the first of the samples was taken that this cycle has brought: what the microphone and the resampler hold back is on its
/// way since then.
HostTime takenAt(pw_stream* stream, std::size_t samples)
{
    pw_time time{};
    if (pw_stream_get_time_n(stream, &time, sizeof time) < 0 || time.now <= 0 || time.rate.denom == 0)
        return HostClock::now() - lengthOf(samples);
    const auto delay = std::chrono::duration<double>(double(time.delay) * time.rate.num / time.rate.denom);
    return HostTime{ HostDuration(time.now) } - std::chrono::round<HostDuration>(delay) - lengthOf(time.buffered);
}

} // namespace

class MicrophoneStream::Impl {
public:
    Impl(PipeWireLoop& loop, const std::string& microphone, Handlers handlers);
    ~Impl();

private:
    int open(const std::string& microphone);
    void close();
    void changeState(pw_stream_state state, const char* error);
    void process();

    static const pw_stream_events events;

    PipeWireLoop& m_loop;
    const Handlers m_handlers;

    // Belong to the loop's thread, or to who has its lock.
    bool m_isConnected = false;
    bool m_hasEnded = false; ///< No handler is called any more.
    pw::StreamPtr m_stream;
    spa_hook m_hook{}; ///< The stream ends it.
};

const pw_stream_events MicrophoneStream::Impl::events = {
    .version = PW_VERSION_STREAM_EVENTS,
    .state_changed = [](void* self, pw_stream_state, pw_stream_state state,
                         const char* error) { static_cast<Impl*>(self)->changeState(state, error); },
    .process = [](void* self) { static_cast<Impl*>(self)->process(); },
};

MicrophoneStream::Impl::Impl(PipeWireLoop& loop, const std::string& microphone, Handlers handlers)
    : m_loop(loop)
    , m_handlers(std::move(handlers))
{
    const int result = open(microphone);
    if (result >= 0)
        return;
    close();
    throw AppError(std::string("The microphone cannot be opened: ") + spa_strerror(result));
}

MicrophoneStream::Impl::~Impl()
{
    close();
}

int MicrophoneStream::Impl::open(const std::string& microphone)
{
    const std::lock_guard guard(m_loop);
    auto* properties =
        pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_MEDIA_ROLE, "Production",
            PW_KEY_TARGET_OBJECT, microphone.c_str(), PW_KEY_NODE_DONT_RECONNECT, "true", PW_KEY_NODE_LATENCY, cycle, nullptr);
    m_stream.reset(pw_stream_new(m_loop.core(), "microphone", properties));
    if (!m_stream)
        return -errno;
    pw_stream_add_listener(m_stream.get(), &m_hook, &events, this);
    std::array<std::uint8_t, 1024> memory;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    spa_audio_info_raw format = {
        .format = SPA_AUDIO_FORMAT_F32, .rate = sampleRate, .channels = 1, .position = { SPA_AUDIO_CHANNEL_MONO }
    };
    const spa_pod* parameters[] = { spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format) };
    // The time of a cycle is only right on the thread that runs it.
    const auto flags =
        static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
    return pw_stream_connect(m_stream.get(), PW_DIRECTION_INPUT, PW_ID_ANY, flags, parameters, 1);
}

void MicrophoneStream::Impl::close()
{
    m_loop.invoke([this] {
        m_hasEnded = true;
        if (m_stream)
            pw_stream_disconnect(m_stream.get()); // Nobody uses the pointer any more when it becomes null.
        m_stream.reset();
    });
}

void MicrophoneStream::Impl::changeState(pw_stream_state state, const char* error)
{
    const bool isLost = state == PW_STREAM_STATE_UNCONNECTED && m_isConnected;
    m_isConnected = state != PW_STREAM_STATE_UNCONNECTED;
    if ((state != PW_STREAM_STATE_ERROR && !isLost) || std::exchange(m_hasEnded, true) || !m_handlers.onFailed)
        return;
    m_handlers.onFailed(AppError(std::string("The microphone cannot be used: ") + (error ? error : "it is gone")));
}

void MicrophoneStream::Impl::process()
{
    pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream.get());
    if (!buffer)
        return;
    const spa_data& data = buffer->buffer->datas[0];
    if (data.data && !(data.chunk->flags & SPA_CHUNK_FLAG_CORRUPTED)) {
        const auto offset = std::min(data.chunk->offset, data.maxsize);
        const auto bytes = std::min(data.chunk->size, data.maxsize - offset);
        const auto* first = reinterpret_cast<const float*>(static_cast<const std::uint8_t*>(data.data) + offset);
        const std::span samples(first, bytes / sizeof(float));
        if (!samples.empty())
            m_handlers.onSound(samples, takenAt(m_stream.get(), samples.size()));
    }
    pw_stream_queue_buffer(m_stream.get(), buffer);
}

MicrophoneStream::MicrophoneStream(PipeWireLoop& loop, const std::string& microphone, Handlers handlers)
    : m_impl(std::make_unique<Impl>(loop, microphone, std::move(handlers)))
{
}

MicrophoneStream::~MicrophoneStream() = default;

} // namespace vantry
