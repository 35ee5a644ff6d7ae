#pragma once

#include "media/Picture.h"
#include "render/Blend.h"
#include "render/PlaneScaler.h"
#include "render/Renderer.h"
#include "render/TileMap.h"

#include <optional>

namespace vantry {

/// The camera's picture: the whole frame, or a bubble with a white ring, or anything on the way from one to the other. One thread
/// at a time.
class CameraLayer {
public:
    CameraLayer(int width, int height);

    /// Takes the camera's picture (none: nothing is shown) and where it goes, and marks the parts of the frame that are no longer
    /// the same.
    void update(const Picture& camera, const Placement& placement, TileMap& changed);

    bool isShown() const { return m_shown; }

    /// Nothing below this layer can be seen.
    bool hidesAll() const { return m_shown && m_opacity >= 256 && m_coversFrame; }

    /// Draws what `area` of the frame, which has even edges, shows of it.
    void draw(PictureBuffer& frame, const FrameRect& area);

private:
    void lay();
    void drawPlane(PictureBuffer& frame, int index, const FrameRect& area);
    PlaneScaler& scaler(int index) { return index == PlaneY ? m_luma : m_chroma; }

    const FrameRect m_frame;

    Picture m_camera;
    bool m_shown = false;
    Placement m_placement;
    Rect m_rect; ///< Of the camera, y downwards.
    double m_ring = 0; ///< Its width in pixels; 0 for none.
    Opacity m_opacity = 256;
    bool m_coversFrame = false; ///< With its corners.
    FrameRect m_bounds; ///< All pixels that the layer touches, with the ring.
    FrameRect m_imageArea; ///< All pixels that the camera's rectangle touches.
    PlaneScaler m_luma;
    PlaneScaler m_chroma;
    std::optional<PictureBuffer> m_image; ///< The scaled camera where it lies in the frame; not used while it hides all.
};

} // namespace vantry
