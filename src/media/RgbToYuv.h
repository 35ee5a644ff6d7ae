#pragma once

#include <cstddef>
#include <cstdint>

namespace vantry {

class PictureBuffer;

/// Opaque sRGB pixels of 32 bits: in memory blue, green, red and a byte that nobody looks at.
struct RgbPixels {
    const std::uint8_t* data = nullptr;
    std::ptrdiff_t stride = 0; ///< Bytes from row to row.
    int width = 0; ///< Even, as the height.
    int height = 0;
};

/// How the conversion computes; every way gives the same samples.
enum class Arithmetic { Portable, Avx2 };

/// The fastest that this processor can.
Arithmetic fastestArithmetic();

/// Draws the pixels into the picture with their upper left corner at (x, y), both even: BT.709, limited range, each chroma sample
/// the mean of its four pixels. True when that changed any sample of the picture.
[[nodiscard]] bool drawRgb(const RgbPixels&, PictureBuffer& target, int x, int y, Arithmetic = fastestArithmetic());

} // namespace vantry
