#pragma once

#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

namespace vantry {

/// Hands samples from one thread to another; neither ever waits. A sample is one float for each channel. Samples are counted from 0
/// on as they are written.
class SoundRing {
public:
    SoundRing(std::int64_t capacity, int channels);

    // For the thread that writes.

    /// Takes as many as there is room for, and says how many.
    std::int64_t write(std::span<const float> samples);

    /// What was written so far is not read any more, but for what is being read just now.
    void discard();

    std::int64_t written() const { return m_written.load(std::memory_order_relaxed); }

    // For the thread that reads.

    struct Piece {
        std::int64_t first = 0; ///< The number of its first sample.
        std::int64_t length = 0;
    };

    /// Fills the beginning of `samples`.
    Piece read(std::span<float> samples);

private:
    const std::int64_t m_capacity;
    const std::int64_t m_channels;
    std::vector<float> m_samples;
    std::atomic<std::int64_t> m_written = 0;
    std::atomic<std::int64_t> m_discarded = 0; ///< What is before it is skipped.
    std::atomic<std::int64_t> m_read = 0;
};

} // namespace vantry
