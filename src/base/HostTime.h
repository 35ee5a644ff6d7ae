#pragma once

#include <chrono>

namespace vantry {

/// The one clock that every sample of every source carries: CLOCK_MONOTONIC, in nanoseconds.
using HostClock = std::chrono::steady_clock;
using HostTime = std::chrono::time_point<HostClock, std::chrono::nanoseconds>;
using HostDuration = std::chrono::nanoseconds;

/// A duration as the seconds that the model's border speaks.
template <typename Rep, typename Period>
constexpr double seconds(std::chrono::duration<Rep, Period> duration)
{
    return std::chrono::duration<double>(duration).count();
}

} // namespace vantry
