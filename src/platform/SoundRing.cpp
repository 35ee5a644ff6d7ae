#include "platform/SoundRing.h"

#include <algorithm>

namespace vantry {

SoundRing::SoundRing(std::int64_t capacity, int channels)
    : m_capacity(capacity)
    , m_channels(channels)
    , m_samples(static_cast<std::size_t>(capacity * channels))
{
}

std::int64_t SoundRing::write(std::span<const float> samples)
{
    const auto from = written();
    const auto room = m_capacity - (from - m_read.load(std::memory_order_acquire));
    const auto length = std::min(room, static_cast<std::int64_t>(samples.size()) / m_channels);
    const auto place = from % m_capacity;
    const auto first = std::min(length, m_capacity - place); // The rest goes to the ring's beginning.
    const auto* source = samples.data();
    std::copy_n(source, first * m_channels, m_samples.begin() + place * m_channels);
    std::copy_n(source + first * m_channels, (length - first) * m_channels, m_samples.begin());
    m_written.store(from + length, std::memory_order_release);
    return length;
}

void SoundRing::discard()
{
    m_discarded.store(written(), std::memory_order_release);
}

SoundRing::Piece SoundRing::read(std::span<float> samples)
{
    const auto from = std::max(m_read.load(std::memory_order_relaxed), m_discarded.load(std::memory_order_acquire));
    const auto available = m_written.load(std::memory_order_acquire) - from;
    const auto length = std::min(available, static_cast<std::int64_t>(samples.size()) / m_channels);
    const auto place = from % m_capacity;
    const auto first = std::min(length, m_capacity - place);
    const auto target = std::copy_n(m_samples.begin() + place * m_channels, first * m_channels, samples.begin());
    std::copy_n(m_samples.begin(), (length - first) * m_channels, target);
    m_read.store(from + length, std::memory_order_release);
    return { from, length };
}

} // namespace vantry
