#pragma once

#include "media/Picture.h"
#include "media/PictureSize.h"

#include <memory>

namespace vantry {

/// Writable sRGB pixels of 32 bits: in memory blue, green, red and a byte for opaque.
struct MutableRgbPixels {
    std::uint8_t* data = nullptr;
    std::ptrdiff_t stride = 0; ///< Bytes from row to row.
    PictureSize size;
};

/// Draws pictures for a screen: scaled in their own shape until they cover the pixels, what reaches over the edges cut off evenly.
/// One thread at a time.
class RgbScaler {
public:
    RgbScaler();
    ~RgbScaler();

    /// Throws AppError when the pixels have no size or there is no memory.
    void cover(const MutableRgbPixels& pixels, const Picture& picture);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
