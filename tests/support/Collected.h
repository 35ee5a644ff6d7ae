#pragma once

#include <cstddef>
#include <mutex>
#include <vector>

namespace vantry::test {

/// What another thread reports, for the test to look at.
template <typename Value>
class Collected {
public:
    void add(Value value)
    {
        const std::lock_guard guard(m_mutex);
        m_values.push_back(std::move(value));
    }
    std::vector<Value> all() const
    {
        const std::lock_guard guard(m_mutex);
        return m_values;
    }
    std::size_t count() const
    {
        const std::lock_guard guard(m_mutex);
        return m_values.size();
    }
    void clear()
    {
        const std::lock_guard guard(m_mutex);
        m_values.clear();
    }

private:
    mutable std::mutex m_mutex;
    std::vector<Value> m_values;
};

} // namespace vantry::test
