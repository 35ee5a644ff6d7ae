#pragma once

#include "base/HostTime.h"

#include <cstdint>

namespace vantry {

/// When an event of the desktop happened, by its stamp: milliseconds of the host's clock in 32 bits, as a display server on this
/// machine gives them. What is not from the last ten seconds comes from another clock: then it is now, which is when it arrived.
inline HostTime hostTimeOf(std::uint64_t stamp, HostTime now)
{
    using std::chrono::milliseconds;
    const auto present = std::chrono::duration_cast<milliseconds>(now.time_since_epoch()).count();
    const auto age = static_cast<std::uint32_t>(static_cast<std::uint64_t>(present) - stamp);
    return age < 10'000 ? now - milliseconds(age) : now;
}

} // namespace vantry
