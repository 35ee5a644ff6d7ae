#include "capture/Reminder.h"

#include <algorithm>
#include <pthread.h>

namespace vantry {

Reminder::Reminder(std::function<void()> remind)
    : m_remind(std::move(remind))
    , m_thread([this] { run(); })
{
}

void Reminder::stop()
{
    if (!m_thread.joinable())
        return;
    {
        const std::lock_guard guard(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void Reminder::remindIn(HostDuration delay)
{
    {
        const std::lock_guard guard(m_mutex);
        const HostTime due = HostClock::now() + delay;
        m_due = m_due ? std::min(*m_due, due) : due;
    }
    m_changed.notify_all();
}

void Reminder::run()
{
    pthread_setname_np(pthread_self(), "vantry.reminder");
    std::unique_lock lock(m_mutex);
    while (!m_isStopping) {
        if (!m_due) {
            m_changed.wait(lock);
        } else if (HostClock::now() < *m_due) {
            m_changed.wait_until(lock, HostTime(*m_due));
        } else {
            m_due.reset();
            lock.unlock();
            m_remind();
            lock.lock();
        }
    }
}

} // namespace vantry
