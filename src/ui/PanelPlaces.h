#pragma once

#include "project/Project.h"

#include <QRect>

namespace vantry {

// Where the floating panels are on the screen that is recorded, in its logical pixels.

/// In the middle of the top edge of what docks and bars leave free.
QRect hudPlace(const QRect& available);

/// In the corner of the whole screen that the bubble has in the video. The presenter gets a larger mirror while the camera fills
/// the video. `size` is the bubble's diameter as a fraction of the height.
QRect bubblePlace(const QRect& screen, Layout layout, Corner corner, double size);

} // namespace vantry
