#pragma once

#include "platform/LeftOutAreas.h"
#include "platform/RootBackground.h"
#include "platform/SharedImages.h"
#include "platform/WindowStack.h"

#include <vector>

namespace vantry {

/// Repaints parts of a grabbed picture as if the excluded windows were not there: the background, and over it every other window
/// from the bottom to the top. The root's windows have to be redirected, so that each has all its pixels however it is covered.
class Uncovering {
public:
    /// `largest`: the most pixels that an area can have.
    Uncovering(const xcb::Connection&, int largest);

    /// `hole` lies within the block. A window that is gone by now is passed over.
    void repaint(const PixelBlock&, const PixelRect& hole, const std::vector<TopWindow>&, RootBackground&, Composition);

private:
    void request(const TopWindow*, xcb_drawable_t, const PixelRect& area, int originX, int originY);
    void paintRequested();

    SharedImages m_images;

    // The repaint that is under way.
    PixelBlock m_target;
    Composition m_composition = Composition::Immediate;
    std::vector<const TopWindow*> m_sources; ///< Whose image was asked for; null is the background.
};

} // namespace vantry
