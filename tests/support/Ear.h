#pragma once

#include "base/HostTime.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <mutex>
#include <numbers>
#include <span>
#include <vector>

namespace vantry::test {

/// How loud a pure tone of this pitch is in one channel of interleaved samples (48 kHz): its amplitude.
inline double loudness(std::span<const float> samples, int channels, int channel, double pitch)
{
    std::complex<double> sum;
    const auto frames = samples.size() / static_cast<std::size_t>(channels);
    for (std::size_t i = 0; i < frames; ++i)
        sum += static_cast<double>(samples[i * static_cast<std::size_t>(channels) + static_cast<std::size_t>(channel)])
            * std::polar(1.0, 2 * std::numbers::pi * pitch * static_cast<double>(i) / 48000);
    return frames ? 2 * std::abs(sum) / static_cast<double>(frames) : 0;
}

/// Keeps what a stream of stereo sound delivers, for a test that looks at it.
class Ear {
public:
    struct Piece {
        std::vector<float> samples;
        HostTime taken;
        HostTime arrived;

        HostDuration length() const { return HostDuration(samples.size() / 2 * 1'000'000'000 / 48000); }
    };

    void hear(std::span<const float> samples, HostTime taken)
    {
        const std::lock_guard guard(m_mutex);
        m_pieces.push_back({ { samples.begin(), samples.end() }, taken, HostClock::now() });
    }

    std::vector<Piece> pieces() const
    {
        const std::lock_guard guard(m_mutex);
        return m_pieces;
    }

    /// How much sound has come.
    HostDuration heard() const
    {
        HostDuration length{};
        for (const auto& piece : pieces())
            length += piece.length();
        return length;
    }

    /// How long after it was taken a piece arrived that was not held up.
    HostDuration shortestDelay() const
    {
        auto shortest = HostDuration::max();
        for (const auto& piece : pieces())
            shortest = std::min(shortest, piece.arrived - piece.taken);
        return shortest;
    }

    /// How loud the tone is in the latest tenth of a second on one channel; nothing as long as less has come.
    double latest(int channel, double pitch) const
    {
        const std::lock_guard guard(m_mutex);
        std::vector<float> samples;
        for (auto piece = m_pieces.rbegin(); piece != m_pieces.rend() && samples.size() < 9600; ++piece)
            samples.insert(samples.begin(), piece->samples.begin(), piece->samples.end());
        return samples.size() < 9600 ? 0 : loudness(std::span(samples).last(9600), 2, channel, pitch);
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Piece> m_pieces;
};

} // namespace vantry::test
