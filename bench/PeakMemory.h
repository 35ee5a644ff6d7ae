#pragma once

#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>

namespace vantry::bench {

/// The most memory that this program has had so far, in kilobytes.
inline long peakKilobytes()
{
    std::ifstream status("/proc/self/status");
    const std::string name = "VmHWM:";
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name))
            return std::atol(line.c_str() + name.size());
    throw std::runtime_error("The system does not say how much memory there was");
}

} // namespace vantry::bench
