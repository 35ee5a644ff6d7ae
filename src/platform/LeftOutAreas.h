#pragma once

#include "base/HostTime.h"
#include "platform/PixelRect.h"
#include "platform/WindowStack.h"

#include <vector>

namespace vantry {

/// How the desktop comes onto the screen.
enum class Composition {
    Immediate, ///< The server shows windows as they are.
    Delayed, ///< A compositing manager paints them some time later, and may let them fade.
};

/// Where on the desktop windows are left out of the picture. With a compositing manager an area stays in here for a while after its
/// window went: what was painted there may still be seen.
class LeftOutAreas {
public:
    /// What of `bounds` the excluded windows cover now. Returns the areas that have to be looked at again.
    std::vector<PixelRect> update(const std::vector<TopWindow>&, const PixelRect& bounds, Composition, HostTime now);

    bool isEmpty() const { return m_areas.empty(); }
    std::vector<PixelRect> within(const PixelRect&) const;

private:
    struct Area {
        PixelRect rect;
        HostTime end; ///< The clock's maximum while the window is there.
    };

    std::vector<Area> m_areas;
};

} // namespace vantry
