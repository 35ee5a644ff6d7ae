#pragma once

#include <chrono>
#include <string>

namespace vantry::test {

/// A name that no other test uses: tests run side by side on one desktop.
inline std::string uniqueName(const std::string& base)
{
    return base + "-" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
}

} // namespace vantry::test
