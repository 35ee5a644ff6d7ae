#pragma once

#include "project/Project.h"

#include <QPoint>
#include <QRect>

#include <optional>

namespace vantry {

// Where the floating panels are on the screen that is recorded, in its logical pixels. `area` is what docks and bars leave free.

/// The controls, or the pill that they are folded into.
QSize hudSize(const QRect& area, bool isFolded);

/// Where the user put the upper right corner, which is the same folded and unfolded, counted from the area's upper left one; else
/// in the middle of the top edge. Always within the area.
QRect hudPlace(const QRect& area, QSize size, std::optional<QPoint> corner);

/// The corner that is to be remembered when the user has put the controls there.
QPoint hudCorner(const QRect& area, const QRect& place);

/// The corner of the controls where nobody has put them anywhere.
QPoint defaultHudCorner(const QRect& area);

/// Below a place, or above it where there is no room below, from its left edge on and within the area.
QRect besidePlace(const QRect& area, const QRect& place, QSize size);

/// A rectangle moved into the area as far as it must; one that is too large keeps the upper left corner in sight.
QRect within(const QRect& area, QRect rectangle);

/// In the corner of the whole screen that the bubble has in the video. The presenter gets a larger mirror while the camera fills
/// the video. `size` is the bubble's diameter as a fraction of the height.
QRect bubblePlace(const QRect& screen, Layout layout, Corner corner, double size);

} // namespace vantry
