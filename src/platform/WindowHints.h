#pragma once

#include <cstdint>

namespace vantry {

/// Asks compositors not to draw a shadow around a window of the environment's X server. Where there is none nothing happens.
void leaveWithoutShadow(std::uint32_t window);

} // namespace vantry
