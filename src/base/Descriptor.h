#pragma once

#include <unistd.h>
#include <utility>

namespace vantry {

/// Owns an open file of the system and closes it. Empty when the number is negative.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number)
        : m_number(number)
    {
    }
    Descriptor(Descriptor&& other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor() { close(); }

    int number() const { return m_number; }
    explicit operator bool() const { return m_number >= 0; }

    void close()
    {
        if (m_number >= 0)
            ::close(std::exchange(m_number, -1));
    }

private:
    int m_number = -1;
};

} // namespace vantry
