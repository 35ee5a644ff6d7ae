#pragma once

#include "media/Picture.h"
#include "render/Bitmap.h"
#include "render/Blend.h"
#include "render/PlaneScaler.h"
#include "render/Renderer.h"
#include "render/TileMap.h"

#include <array>
#include <vector>

namespace vantry {

/// One overlay while it is shown: its bitmap as premultiplied Y'CbCr with alpha, scaled to where it stands now. One thread at a
/// time.
class OverlayLayer {
public:
    OverlayLayer(const Bitmap& bitmap, int frameWidth, int frameHeight);

    /// Moves and fades it, and marks the parts of the frame that are no longer the same.
    void update(const OverlayPlacement& placement, TileMap& changed);

    /// Marks what is to be drawn again without it.
    void markGone(TileMap& changed) const { changed.mark(m_bounds); }

    /// Draws what `area` of the frame, which has even edges, shows of it.
    void draw(PictureBuffer& frame, const FrameRect& area) const;

private:
    /// Samples of one byte.
    struct Samples {
        Samples() = default;
        Samples(int width, int height)
            : width(width)
            , height(height)
            , bytes(static_cast<std::size_t>(width) * height)
        {
        }
        MutablePlane plane() { return { bytes.data(), width, width, height }; }
        const std::uint8_t* row(int y) const { return bytes.data() + static_cast<std::size_t>(y) * width; }

        int width = 0;
        int height = 0;
        std::vector<std::uint8_t> bytes;
    };
    struct Blended {
        Samples colour;
        Samples alpha;
    };

    void scale();

    const FrameRect m_frame;
    std::array<Samples, 3> m_source; ///< Y', Cb, Cr, premultiplied, in the bitmap's size.
    Samples m_sourceAlpha;

    OverlayPlacement m_placement{ {}, -1 };
    FrameRect m_bounds;
    std::array<Blended, 3> m_scaled; ///< A plane each, from the top left of the bounds on.
};

} // namespace vantry
