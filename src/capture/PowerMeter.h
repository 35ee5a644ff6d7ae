#pragma once

#include <atomic>
#include <span>

namespace vantry {

/// How loud it is right now. Sound comes from one thread at a time, any thread may look.
class PowerMeter {
public:
    static constexpr float silence = -160;

    /// Samples at 48000 a second.
    void add(std::span<const float> samples);

    /// No sound any more.
    void reset() { m_meanSquare = 0; }

    /// The average power of about the last tenth of a second in dBFS: 0 is a square wave of full scale, `silence` the least.
    float power() const;

private:
    std::atomic<float> m_meanSquare = 0;
};

} // namespace vantry
