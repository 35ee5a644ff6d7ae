#include "render/Blend.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace vantry {

Opacity opacityOf(double opacity)
{
    return opacity >= 0.999 ? 256 : static_cast<Opacity>(std::lround(std::clamp(opacity, 0.0, 1.0) * 256));
}

// Sixteen-bit arithmetic throughout, which compilers turn into vector loops.

void blendPremultiplied(std::uint8_t* row, const std::uint8_t* colour, const std::uint8_t* alpha, Opacity opacity, int count)
{
    const auto fade = static_cast<std::uint16_t>(opacity);
    for (int i = 0; i < count; ++i) {
        const auto c = static_cast<std::uint16_t>((colour[i] * fade + 128) >> 8);
        const auto a = static_cast<std::uint16_t>((alpha[i] * fade + 128) >> 8);
        const auto under = static_cast<std::uint16_t>(row[i] * (255 - a) + 128);
        const auto shown = static_cast<std::uint16_t>((under + (under >> 8)) >> 8); // Divided by 255, rounded.
        row[i] = static_cast<std::uint8_t>(std::min(c + shown, 255));
    }
}

void blendFaded(std::uint8_t* row, const std::uint8_t* colour, Opacity opacity, int count)
{
    if (opacity >= 256) {
        std::memcpy(row, colour, static_cast<std::size_t>(count));
        return;
    }
    const auto fade = static_cast<std::uint16_t>(opacity);
    const auto keep = static_cast<std::uint16_t>(256 - opacity);
    for (int i = 0; i < count; ++i)
        row[i] = static_cast<std::uint8_t>((colour[i] * fade + row[i] * keep + 128) >> 8);
}

} // namespace vantry
