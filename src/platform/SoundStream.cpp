#include "platform/SoundStream.h"

#include "platform/PipeWire.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <spa/param/audio/format-utils.h>
#include <spa/utils/result.h>
#include <utility>

namespace vantry {

namespace {

/// With shorter cycles a busy machine misses some of them.
constexpr const char* cycle = "2048/48000";

HostDuration lengthOf(std::uint64_t samples)
{
    return HostDuration(std::chrono::seconds(1)) * static_cast<std::int64_t>(samples) / SoundStream::sampleRate;
}

pw_properties* propertiesOf(const SoundStream::Options& options)
{
    auto* properties = pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Capture", PW_KEY_MEDIA_ROLE,
        "Production", PW_KEY_NODE_LATENCY, cycle, nullptr);
    for (const auto& [key, value] : options.properties)
        pw_properties_set(properties, key.c_str(), value.c_str());
    return properties;
}

spa_audio_info_raw formatOf(int channels)
{
    spa_audio_info_raw format = {
        .format = SPA_AUDIO_FORMAT_F32, .rate = SoundStream::sampleRate, .channels = static_cast<std::uint32_t>(channels)
    };
    format.position[0] = channels == 1 ? SPA_AUDIO_CHANNEL_MONO : SPA_AUDIO_CHANNEL_FL;
    format.position[1] = SPA_AUDIO_CHANNEL_FR;
    return format;
}

} // namespace

class SoundStream::Impl {
public:
    Impl(PipeWireLoop& loop, const Options& options, Handlers handlers);
    ~Impl() { close(); }

    std::uint32_t node() const { return pw_stream_get_node_id(m_stream.get()); }

private:
    int open(const Options& options);
    void close();
    void changeState(pw_stream_state state, const char* error);
    void process();
    HostTime takenAt();

    static const pw_stream_events events;

    PipeWireLoop& m_loop;
    const Handlers m_handlers;
    const std::string m_complaint;
    const std::size_t m_channels;

    // Belong to the loop's thread, or to who has its lock.
    bool m_isOpen = false;
    bool m_hasEnded = false; ///< No handler is called any more.
    pw::StreamPtr m_stream;
    spa_hook m_hook{}; ///< The stream ends it.

    // Belongs to the media library's thread.
    std::int64_t m_cycle = 0; ///< When the latest cycle began, in the server's words.
};

const pw_stream_events SoundStream::Impl::events = {
    .version = PW_VERSION_STREAM_EVENTS,
    .state_changed = [](void* self, pw_stream_state, pw_stream_state state,
                         const char* error) { static_cast<Impl*>(self)->changeState(state, error); },
    .process = [](void* self) { static_cast<Impl*>(self)->process(); },
};

SoundStream::Impl::Impl(PipeWireLoop& loop, const Options& options, Handlers handlers)
    : m_loop(loop)
    , m_handlers(std::move(handlers))
    , m_complaint(options.what + " cannot be used: ")
    , m_channels(static_cast<std::size_t>(options.channels))
{
    const int result = open(options);
    if (result >= 0)
        return;
    close();
    throw AppError(m_complaint + spa_strerror(result));
}

int SoundStream::Impl::open(const Options& options)
{
    const std::lock_guard guard(m_loop);
    m_stream.reset(pw_stream_new(m_loop.core(), options.name.c_str(), propertiesOf(options)));
    if (!m_stream)
        return -errno;
    pw_stream_add_listener(m_stream.get(), &m_hook, &events, this);
    std::array<std::uint8_t, 1024> memory;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    auto format = formatOf(options.channels);
    const spa_pod* parameters[] = { spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format) };
    // The time of a cycle is only right on the thread that runs it.
    auto flags = PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS;
    if (options.isConnected)
        flags |= PW_STREAM_FLAG_AUTOCONNECT;
    return pw_stream_connect(
        m_stream.get(), PW_DIRECTION_INPUT, PW_ID_ANY, static_cast<pw_stream_flags>(flags), parameters, std::size(parameters));
}

void SoundStream::Impl::close()
{
    m_loop.invoke([this] {
        m_hasEnded = true;
        if (m_stream)
            pw_stream_disconnect(m_stream.get()); // Nobody uses the pointer any more when it becomes null.
        m_stream.reset();
    });
}

void SoundStream::Impl::changeState(pw_stream_state state, const char* error)
{
    const bool isLost = state == PW_STREAM_STATE_UNCONNECTED && m_isOpen;
    m_isOpen = state != PW_STREAM_STATE_UNCONNECTED;
    if ((state == PW_STREAM_STATE_ERROR || isLost) && !std::exchange(m_hasEnded, true) && m_handlers.onFailed)
        m_handlers.onFailed(AppError(m_complaint + (error ? error : "it is gone")));
}

void SoundStream::Impl::process()
{
    pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream.get());
    if (!buffer)
        return;
    const spa_data& data = buffer->buffer->datas[0];
    if (data.data && !(data.chunk->flags & SPA_CHUNK_FLAG_CORRUPTED)) {
        const auto offset = std::min(data.chunk->offset, data.maxsize);
        const auto frames = std::min(data.chunk->size, data.maxsize - offset) / (sizeof(float) * m_channels);
        const auto* first = reinterpret_cast<const float*>(static_cast<const std::uint8_t*>(data.data) + offset);
        if (frames > 0)
            m_handlers.onSound({ first, frames * m_channels }, takenAt());
    }
    pw_stream_queue_buffer(m_stream.get(), buffer);
}

/// When the first of the samples was taken that this cycle has brought: what the device and the resampler hold back is on its way
/// since then. Before the first cycle there is no time; in the first cycle that another device drives the server still tells the
/// time of the one before, maybe long ago.
HostTime SoundStream::Impl::takenAt()
{
    pw_time time{};
    const int result = pw_stream_get_time_n(m_stream.get(), &time, sizeof time);
    if (result < 0 || time.rate.denom == 0 || time.now <= 0 || std::exchange(m_cycle, time.now) == time.now)
        return HostClock::now();
    const auto delay = std::chrono::duration<double>(static_cast<double>(time.delay) * time.rate.num / time.rate.denom);
    return HostTime{ HostDuration(time.now) } - std::chrono::round<HostDuration>(delay) - lengthOf(time.buffered);
}

SoundStream::SoundStream(PipeWireLoop& loop, const Options& options, Handlers handlers)
    : m_impl(std::make_unique<Impl>(loop, options, std::move(handlers)))
{
}

SoundStream::~SoundStream() = default;

std::uint32_t SoundStream::node() const
{
    return m_impl->node();
}

} // namespace vantry
