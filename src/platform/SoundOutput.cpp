#include "platform/SoundOutput.h"

#include "platform/SoundConnection.h"
#include "platform/SoundRing.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace vantry {

namespace {

/// When the device has asked for nothing for so long, it is gone or asleep: cycles last a few hundredths of a second.
constexpr HostDuration longestPause = std::chrono::milliseconds(300);

/// What is taken in a cycle is heard, even when it is paused just then.
constexpr int cycle = 1024;

pw::SoundConnection::Options options()
{
    return { .what = "The sound output",
        .name = "Preview",
        .direction = PW_DIRECTION_OUTPUT,
        .channels = SoundOutput::channels,
        .cycle = cycle,
        .flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_INACTIVE),
        .properties = { { PW_KEY_NODE_NAME, "vantry.preview" } } };
}

} // namespace

class SoundOutput::Impl {
public:
    Impl(PipeWireLoop& loop, std::function<void(const AppError&)> onFailed);

    void setActive(bool isActive);
    std::optional<std::int64_t> heardAt(HostTime time) const;

    SoundRing m_ring{ sampleRate, channels };
    std::atomic<std::int64_t> m_reached = 0; ///< The number of the next sample that the device gets; set after `m_origin`.

private:
    void process(pw_stream& stream);
    HostTime heardFrom();

    PipeWireLoop& m_loop;

    // Written by the media library's thread.
    std::atomic<HostDuration::rep> m_origin = 0; ///< When sample 0 would have been heard.
    std::atomic<HostDuration::rep> m_asked = 0; ///< When the device asked last.

    pw::SoundConnection m_connection;
};

SoundOutput::Impl::Impl(PipeWireLoop& loop, std::function<void(const AppError&)> onFailed)
    : m_loop(loop)
    , m_connection(
          loop, options(), { .onProcess = [this](pw_stream& stream) { process(stream); }, .onFailed = std::move(onFailed) })
{
}

void SoundOutput::Impl::setActive(bool isActive)
{
    m_loop.invoke([&] { pw_stream_set_active(&m_connection.stream(), isActive); });
}

void SoundOutput::Impl::process(pw_stream& stream)
{
    pw_buffer* buffer = pw_stream_dequeue_buffer(&stream);
    if (!buffer)
        return;
    const spa_data& data = buffer->buffer->datas[0];
    if (data.data) {
        constexpr auto frameSize = sizeof(float) * channels;
        const std::uint64_t most = data.maxsize / frameSize;
        const auto count = buffer->requested ? std::min(buffer->requested, most) : most;
        const std::span samples(static_cast<float*>(data.data), count * channels);
        const auto from = heardFrom();
        const auto piece = m_ring.read(samples);
        std::ranges::fill(samples.subspan(static_cast<std::size_t>(piece.length * channels)), 0.0f);
        // While there is nothing to hear, the samples' time goes on.
        if (piece.length > 0) {
            m_origin = (from - pw::lengthOf(piece.first)).time_since_epoch().count();
            m_reached = piece.first + piece.length;
        }
        m_asked = HostClock::now().time_since_epoch().count();
        *data.chunk = { .offset = 0, .size = static_cast<std::uint32_t>(samples.size_bytes()), .stride = frameSize };
    }
    pw_stream_queue_buffer(&stream, buffer);
}

/// When the first of the samples is heard that this cycle takes: what is on the way to the device goes before it.
HostTime SoundOutput::Impl::heardFrom()
{
    const auto time = m_connection.cycle();
    if (!time)
        return HostClock::now();
    return HostTime{ HostDuration(time->now) } + pw::delayOf(*time) + pw::lengthOf(static_cast<std::int64_t>(time->buffered));
}

std::optional<std::int64_t> SoundOutput::Impl::heardAt(HostTime time) const
{
    const HostTime asked{ HostDuration(m_asked) };
    if (time - asked > longestPause)
        return std::nullopt;
    const auto since = time - HostTime{ HostDuration(m_origin) };
    return std::chrono::floor<std::chrono::duration<std::int64_t, std::ratio<1, sampleRate>>>(since).count();
}

SoundOutput::SoundOutput(PipeWireLoop& loop, std::function<void(const AppError&)> onFailed)
    : m_impl(std::make_unique<Impl>(loop, std::move(onFailed)))
{
}

SoundOutput::~SoundOutput() = default;

void SoundOutput::start()
{
    m_impl->setActive(true);
}

void SoundOutput::stop()
{
    m_impl->setActive(false);
}

std::int64_t SoundOutput::write(std::span<const float> samples)
{
    return m_impl->m_ring.write(samples);
}

void SoundOutput::discard()
{
    m_impl->m_ring.discard();
}

std::int64_t SoundOutput::written() const
{
    return m_impl->m_ring.written();
}

std::int64_t SoundOutput::reached() const
{
    return m_impl->m_reached;
}

std::optional<std::int64_t> SoundOutput::heardAt(HostTime time) const
{
    return m_impl->heardAt(time);
}

} // namespace vantry
