#pragma once

#include "base/HostTime.h"

#include <QObject>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace vantry::test {

/// How long this thread's event loop was held up at most while the object exists.
class LoopGaps : public QObject {
public:
    LoopGaps()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        connect(&m_timer, &QTimer::timeout, this, [this] { note(); });
        m_timer.start(std::chrono::milliseconds(5));
    }

    /// Also what has not yet come to an end.
    HostDuration longest()
    {
        note();
        return m_longest;
    }

private:
    void note()
    {
        const HostTime now = HostClock::now();
        m_longest = std::max(m_longest, now - std::exchange(m_latest, now));
    }

    QTimer m_timer;
    HostTime m_latest = HostClock::now();
    HostDuration m_longest{};
};

} // namespace vantry::test
