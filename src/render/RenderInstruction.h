#pragma once

#include "media/MediaTime.h"
#include "project/Project.h"
#include "render/Bitmap.h"

#include <map>

namespace vantry {

using OverlayImages = std::map<Uuid, Bitmap>;

/// Everything that the compositor needs besides the source pictures. One covers the whole timeline; it is immutable, so a changed
/// project needs a new one.
struct RenderInstruction {
    MediaTime duration{};
    Project project;
    OverlayImages images; ///< By overlay; an overlay without an image is not drawn.
};

} // namespace vantry
