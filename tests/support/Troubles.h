#pragma once

#include "capture/CaptureTrouble.h"

#include <array>
#include <mutex>

namespace vantry::test {

/// What another thread tells of sources, for the test to look at.
class Troubles {
public:
    TroubleHandler handler()
    {
        return [this](CaptureSource source, const std::optional<std::string>& trouble) {
            const std::lock_guard guard(m_mutex);
            m_current.at(static_cast<std::size_t>(source)) = trouble.value_or(std::string());
            ++m_count;
        };
    }

    /// Empty where all is well.
    std::string of(CaptureSource source) const
    {
        const std::lock_guard guard(m_mutex);
        return m_current.at(static_cast<std::size_t>(source));
    }

    /// How often something was told.
    int count() const
    {
        const std::lock_guard guard(m_mutex);
        return m_count;
    }

private:
    mutable std::mutex m_mutex;
    std::array<std::string, captureSourceCount> m_current;
    int m_count = 0;
};

} // namespace vantry::test
