#pragma once

#include <algorithm>
#include <cstdint>

namespace vantry {

/// Lays `count` premultiplied pixels of 32 bits (blue, green, red, alpha in memory) over others.
inline void drawTranslucentRow(const std::uint8_t* source, std::uint8_t* target, int count)
{
    for (const auto* end = source + 4 * count; source != end; source += 4, target += 4) {
        const unsigned through = 255u - source[3];
        for (int channel = 0; channel < 3; ++channel) {
            const unsigned kept = target[channel] * through + 127;
            target[channel] = static_cast<std::uint8_t>(std::min(255u, source[channel] + kept / 255));
        }
    }
}

} // namespace vantry
