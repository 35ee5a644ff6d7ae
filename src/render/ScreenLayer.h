#pragma once

#include "media/Picture.h"
#include "project/Project.h"
#include "render/PlaneScaler.h"
#include "render/TileMap.h"

#include <optional>

namespace vantry {

/// The bottom of every frame: the screen recording, cropped, fitted and centred on the background. One thread at a time.
class ScreenLayer {
public:
    ScreenLayer(int width, int height, std::optional<CropRect> crop);

    /// Takes the screen's picture (none: background only) and marks the parts of the frame that are no longer the same.
    void update(const Picture& screen, TileMap& changed);

    /// The layer as a picture of the frame's size, where that costs nothing; null otherwise.
    const Picture& whole() const { return m_whole; }

    /// Draws `area` of the layer, which has even edges.
    void draw(PictureBuffer& frame, const FrameRect& area) const;

private:
    void lay(const Picture& screen);
    void scale(const Picture& screen, const FrameRect& area);
    void blendEdges(int plane, const FrameRect& area);
    void markDifferences(const Picture& before, const Picture& now, TileMap& changed);

    const int m_width;
    const int m_height;
    const std::optional<CropRect> m_crop;

    Picture m_screen;
    Picture m_whole;
    PictureBuffer m_scaled; ///< Background and fitted screen, where the screen is not simply the frame.
    Rect m_destination; ///< Of the fitted screen in the frame, y downwards.
    FrameRect m_area; ///< All pixels that it touches.
    std::optional<PlaneScaler> m_luma;
    std::optional<PlaneScaler> m_chroma;
};

} // namespace vantry
