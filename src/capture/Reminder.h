#pragma once

#include "base/HostTime.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace vantry {

/// Calls back after a while, on a thread of its own.
class Reminder {
public:
    explicit Reminder(std::function<void()> remind);
    ~Reminder() { stop(); }

    Reminder(const Reminder&) = delete;
    Reminder& operator=(const Reminder&) = delete;

    /// Asking again before it is due keeps the earlier time.
    void remindIn(HostDuration delay);

    /// The callback does not run any more when it returns.
    void stop();

private:
    void run();

    const std::function<void()> m_remind;

    std::mutex m_mutex;
    std::condition_variable m_changed;

    // Guarded by the mutex.
    std::optional<HostTime> m_due;
    bool m_isStopping = false;

    std::thread m_thread;
};

} // namespace vantry
