#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace vantry {

/// What `push` does when the queue is full.
enum class WhenFull { Block, Drop };

/// A first-in first-out hand-over between threads with room for a fixed number of values. `close()` ends every wait: pushes are
/// refused from then on, `pop` gives what is left and then nothing. Safe to use from any thread.
template <typename T>
class BoundedQueue {
public:
    explicit BoundedQueue(std::size_t capacity, WhenFull whenFull = WhenFull::Block)
        : m_capacity(capacity)
        , m_whenFull(whenFull)
    {
    }

    /// False when the value was not taken: the queue is closed, or full and dropping.
    [[nodiscard]] bool push(T value)
    {
        std::unique_lock lock(m_mutex);
        if (m_whenFull == WhenFull::Block)
            m_changed.wait(lock, [&] { return m_closed || m_values.size() < m_capacity; });
        if (m_closed || m_values.size() >= m_capacity)
            return false;
        m_values.push_back(std::move(value));
        m_changed.notify_all();
        return true;
    }

    /// Waits for the next value; nothing once the queue is closed and empty.
    [[nodiscard]] std::optional<T> pop()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_closed || !m_values.empty(); });
        if (m_values.empty())
            return std::nullopt;
        std::optional<T> value(std::move(m_values.front()));
        m_values.pop_front();
        m_changed.notify_all();
        return value;
    }

    void close()
    {
        const std::lock_guard lock(m_mutex);
        m_closed = true;
        m_changed.notify_all();
    }

    /// Closes the queue and forgets what is in it: for a hand-over that is given up.
    void abandon()
    {
        std::deque<T> forgotten;
        const std::lock_guard lock(m_mutex);
        m_closed = true;
        forgotten.swap(m_values);
        m_changed.notify_all();
    }

private:
    const std::size_t m_capacity;
    const WhenFull m_whenFull;

    std::mutex m_mutex;
    std::condition_variable m_changed;

    // Guarded by the mutex.
    std::deque<T> m_values;
    bool m_closed = false;
};

} // namespace vantry
