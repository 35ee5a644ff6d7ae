#pragma once

#include "media/YuvColours.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace vantry {

class PictureBuffer;

/// Pictures as devices put them into memory.
struct RawPixels {
    enum class Layout {
        Yuy2, ///< Y Cb Y Cr, two pixels at a time.
        Nv12, ///< A plane of Y, one of Cb and Cr in turn.
        I420, ///< A plane each of Y, Cb and Cr.
        Bgrx, ///< sRGB: blue, green, red, and a byte without meaning.
    };
    struct Plane {
        const std::uint8_t* data = nullptr;
        std::ptrdiff_t stride = 0; ///< Bytes from row to row.

        const std::uint8_t* row(int y) const { return data + y * stride; }
    };

    Layout layout = Layout::Yuy2;
    YuvColours colours; ///< Not of Bgrx.
    std::array<Plane, 3> planes;
};

/// Draws the upper left part that the picture has room for.
void drawRaw(const RawPixels& pixels, PictureBuffer& target);

} // namespace vantry
