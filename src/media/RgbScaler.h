#pragma once

#include "media/Picture.h"
#include "media/YuvToRgb.h"

#include <memory>

namespace vantry {

/// Draws pictures for a screen. Both throw AppError when the pixels have no size or there is no memory. One thread at a time.
class RgbScaler {
public:
    RgbScaler();
    ~RgbScaler();

    /// Scales the picture in its own shape until it covers the pixels; what reaches over the edges is cut off evenly.
    void cover(const MutableRgbPixels& pixels, const Picture& picture);

    /// Stretches the whole picture to the pixels.
    void fill(const MutableRgbPixels& pixels, const Picture& picture);

private:
    void draw(const MutableRgbPixels& pixels, const Picture& picture, PictureSize part);

    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
