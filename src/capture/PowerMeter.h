#pragma once

#include "base/HostTime.h"

#include <atomic>
#include <span>

namespace vantry {

/// How loud it is right now. Sound comes from one thread at a time, any thread may look.
class PowerMeter {
public:
    static constexpr float silence = -160;

    /// Samples at 48000 a second that have come just now.
    void add(std::span<const float> samples);

    /// No sound any more.
    void reset() { m_meanSquare = 0; }

    /// The average power of about the last tenth of a second in dBFS: 0 is a square wave of full scale, `silence` the least. Where
    /// nothing comes, it falls.
    float power() const;

    /// When sound came last; the clock's beginning before that.
    HostTime latest() const { return HostTime(HostDuration(m_latest)); }

private:
    std::atomic<float> m_meanSquare = 0;
    std::atomic<HostDuration::rep> m_latest = 0;
};

} // namespace vantry
