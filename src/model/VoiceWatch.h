#pragma once

#include "base/HostTime.h"

namespace vantry {

/// Notices that a microphone which should be heard is not: muted at the device, turned down, or the wrong one. One thread at a
/// time.
class VoiceWatch {
public:
    /// Nothing is heard for so long before it counts.
    static constexpr HostDuration patience = std::chrono::seconds(5);

    /// How loud it is now, from 0 for less than a room that is quiet.
    void hear(double level, HostTime now)
    {
        if (level > 0)
            start(now);
    }

    /// From now on it should be heard.
    void start(HostTime now) { m_heard = now; }

    bool isSilent(HostTime now) const { return now - m_heard >= patience; }

private:
    HostTime m_heard = HostClock::now();
};

} // namespace vantry
