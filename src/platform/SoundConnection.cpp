#include "platform/SoundConnection.h"

#include <array>
#include <cerrno>
#include <spa/param/audio/format-utils.h>
#include <spa/utils/result.h>
#include <utility>

namespace vantry::pw {

namespace {

pw_properties* propertiesOf(const SoundConnection::Options& options)
{
    auto* properties = pw_properties_new(PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_ROLE, "Production", nullptr);
    pw_properties_setf(properties, PW_KEY_NODE_LATENCY, "%d/%d", options.cycle, SoundConnection::sampleRate);
    pw_properties_set(properties, PW_KEY_MEDIA_CATEGORY, options.direction == PW_DIRECTION_INPUT ? "Capture" : "Playback");
    for (const auto& [key, value] : options.properties)
        pw_properties_set(properties, key.c_str(), value.c_str());
    return properties;
}

spa_audio_info_raw formatOf(int channels)
{
    spa_audio_info_raw format = {
        .format = SPA_AUDIO_FORMAT_F32, .rate = SoundConnection::sampleRate, .channels = static_cast<std::uint32_t>(channels)
    };
    format.position[0] = channels == 1 ? SPA_AUDIO_CHANNEL_MONO : SPA_AUDIO_CHANNEL_FL;
    format.position[1] = SPA_AUDIO_CHANNEL_FR;
    return format;
}

} // namespace

const pw_stream_events SoundConnection::events = {
    .version = PW_VERSION_STREAM_EVENTS,
    .state_changed = [](void* self, pw_stream_state, pw_stream_state state,
                         const char* error) { static_cast<SoundConnection*>(self)->changeState(state, error); },
    .process =
        [](void* data) {
            auto* self = static_cast<SoundConnection*>(data);
            self->m_handlers.onProcess(*self->m_stream);
        },
};

SoundConnection::SoundConnection(PipeWireLoop& loop, const Options& options, Handlers handlers)
    : m_loop(loop)
    , m_handlers(std::move(handlers))
    , m_complaint(options.what + " cannot be used: ")
{
    m_loop.invoke([&] { open(options); });
}

SoundConnection::~SoundConnection()
{
    m_loop.invoke([this] { end(); });
}

void SoundConnection::open(const Options& options)
{
    const int result = connect(options);
    if (result >= 0)
        return;
    end();
    throw AppError(m_complaint + spa_strerror(result));
}

int SoundConnection::connect(const Options& options)
{
    m_stream.reset(pw_stream_new(m_loop.core(), options.name.c_str(), propertiesOf(options)));
    if (!m_stream)
        return -errno;
    pw_stream_add_listener(m_stream.get(), &m_hook, &events, this);
    std::array<std::uint8_t, 1024> memory;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(memory.data(), memory.size());
    auto format = formatOf(options.channels);
    const spa_pod* parameters[] = { spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format) };
    // The time of a cycle is only right on the thread that runs it.
    const auto flags = PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS | options.flags;
    return pw_stream_connect(
        m_stream.get(), options.direction, PW_ID_ANY, static_cast<pw_stream_flags>(flags), parameters, std::size(parameters));
}

void SoundConnection::end()
{
    m_hasEnded = true;
    if (m_stream)
        pw_stream_disconnect(m_stream.get()); // Nobody uses the pointer any more when it becomes null.
    m_stream.reset();
}

void SoundConnection::changeState(pw_stream_state state, const char* error)
{
    const bool isLost = state == PW_STREAM_STATE_UNCONNECTED && m_isOpen;
    m_isOpen = state != PW_STREAM_STATE_UNCONNECTED;
    if ((state == PW_STREAM_STATE_ERROR || isLost) && !std::exchange(m_hasEnded, true) && m_handlers.onFailed)
        m_handlers.onFailed(AppError(m_complaint + (error ? error : "it is gone")));
}

std::optional<pw_time> SoundConnection::cycle()
{
    pw_time time{};
    const int result = pw_stream_get_time_n(m_stream.get(), &time, sizeof time);
    if (result < 0 || time.rate.denom == 0 || time.now <= 0 || std::exchange(m_cycle, time.now) == time.now)
        return std::nullopt;
    return time;
}

HostDuration delayOf(const pw_time& time)
{
    return std::chrono::round<HostDuration>(
        std::chrono::duration<double>(static_cast<double>(time.delay) * time.rate.num / time.rate.denom));
}

} // namespace vantry::pw
