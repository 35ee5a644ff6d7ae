#pragma once

#include "media/Picture.h"
#include "media/PictureSize.h"

#include <array>

namespace vantry {

/// Writable sRGB pixels of 32 bits: in memory blue, green, red and a byte for opaque.
struct MutableRgbPixels {
    std::uint8_t* data = nullptr;
    std::ptrdiff_t stride = 0; ///< Bytes from row to row, a multiple of 4.
    PictureSize size;
};

/// Gives each pixel the colour of its samples, which are BT.709, limited range, rounded to the nearest. All three planes have the
/// pixels' size.
void convertToRgb(const std::array<Plane, 3>& samples, const MutableRgbPixels& pixels);

} // namespace vantry
