#include "platform/SoundStream.h"

#include "platform/SoundConnection.h"

#include <algorithm>
#include <utility>

namespace vantry {

namespace {

/// With shorter cycles a busy machine misses some of them.
constexpr int cycle = 2048;

pw::SoundConnection::Options connectionFor(const SoundStream::Options& options)
{
    return { .what = options.what,
        .name = options.name,
        .direction = PW_DIRECTION_INPUT,
        .channels = options.channels,
        .cycle = cycle,
        .flags = options.isConnected ? PW_STREAM_FLAG_AUTOCONNECT : PW_STREAM_FLAG_NONE,
        .properties = options.properties };
}

} // namespace

class SoundStream::Impl {
public:
    Impl(PipeWireLoop& loop, const Options& options, Handlers handlers);

    std::uint32_t node() const { return pw_stream_get_node_id(&m_connection.stream()); }

private:
    void process(pw_stream& stream);
    HostTime takenAt();

    const std::function<void(std::span<const float>, HostTime)> m_onSound;
    const std::size_t m_channels;
    pw::SoundConnection m_connection;
};

SoundStream::Impl::Impl(PipeWireLoop& loop, const Options& options, Handlers handlers)
    : m_onSound(std::move(handlers.onSound))
    , m_channels(static_cast<std::size_t>(options.channels))
    , m_connection(loop, connectionFor(options),
          { .onProcess = [this](pw_stream& stream) { process(stream); }, .onFailed = std::move(handlers.onFailed) })
{
}

void SoundStream::Impl::process(pw_stream& stream)
{
    pw_buffer* buffer = pw_stream_dequeue_buffer(&stream);
    if (!buffer)
        return;
    const spa_data& data = buffer->buffer->datas[0];
    if (data.data && !(data.chunk->flags & SPA_CHUNK_FLAG_CORRUPTED)) {
        const auto offset = std::min(data.chunk->offset, data.maxsize);
        const auto frames = std::min(data.chunk->size, data.maxsize - offset) / (sizeof(float) * m_channels);
        const auto* first = reinterpret_cast<const float*>(static_cast<const std::uint8_t*>(data.data) + offset);
        if (frames > 0)
            m_onSound({ first, frames * m_channels }, takenAt());
    }
    pw_stream_queue_buffer(&stream, buffer);
}

/// When the first of the samples was taken that this cycle has brought: what the device and the resampler hold back is on its way
/// since then.
HostTime SoundStream::Impl::takenAt()
{
    const auto time = m_connection.cycle();
    if (!time)
        return HostClock::now();
    return HostTime{ HostDuration(time->now) } - pw::delayOf(*time) - pw::lengthOf(static_cast<std::int64_t>(time->buffered));
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
