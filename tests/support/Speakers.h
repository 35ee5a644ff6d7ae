#pragma once

#include "platform/PipeWireLoop.h"
#include "platform/SoundStream.h"
#include "support/Ear.h"

#include <chrono>
#include <vector>

namespace vantry::test {

/// Listens to what is played on the desktop's output.
class Speakers {
public:
    /// How loud the tone is in the latest tenth of a second; nothing as long as less was heard.
    double latest(double pitch) const { return m_ear.latest(0, pitch); }

    HostDuration heard() const { return m_ear.heard(); }

    /// When samples were heard that are louder than half of full scale.
    std::vector<HostTime> clicks() const
    {
        std::vector<HostTime> times;
        for (const auto& piece : m_ear.pieces())
            for (std::size_t i = 0; i < piece.samples.size(); i += 2)
                // The output sets the pace: listeners have their turn before those who play, and hear what was played the turn
                // before.
                if (piece.samples[i] > 0.5F)
                    times.push_back(piece.taken - piece.length() + HostDuration(i / 2 * 1'000'000'000 / 48000));
        return times;
    }

private:
    PipeWireLoop m_loop{ "test.speakers" };
    Ear m_ear;
    const SoundStream m_stream{ m_loop,
        { .what = "The output", .name = "test", .channels = 2, .properties = { { "stream.capture.sink", "true" } } },
        { .onSound = [this](std::span<const float> samples, HostTime taken) { m_ear.hear(samples, taken); }, .onFailed = {} } };
};

} // namespace vantry::test
