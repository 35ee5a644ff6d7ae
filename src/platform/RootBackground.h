#pragma once

#include "platform/PixelRect.h"
#include "platform/Xcb.h"

#include <xcb/composite.h>

namespace vantry {

/// What the desktop shows where no window is, also where it is covered. The server paints it into a window of ours that lies off
/// the screen; the root's windows have to be redirected, or that window has no pixels.
class RootBackground {
public:
    /// Who paints the desktop that is seen.
    enum class Painter { Server, Compositor };

    explicit RootBackground(const xcb::Connection&);
    ~RootBackground();

    RootBackground(const RootBackground&) = delete;
    RootBackground& operator=(const RootBackground&) = delete;

    /// True when the event says that the background may look different.
    bool handle(const xcb_generic_event_t&) const;

    /// To be called when the background or its painter may have changed, and before the first `paint`.
    void update(Painter);

    /// Paints an area of the desktop and tells what to read it from; the pixmap's origin is the desktop's.
    xcb_pixmap_t paint(const PixelRect& area);

private:
    bool showWallpaper();
    void show(std::uint32_t attribute, std::uint32_t value);

    const xcb::Connection& m_connection;
    const xcb_atom_t m_wallpaper;
    const xcb_atom_t m_rootColour;
    const xcb_window_t m_window;
    const xcb_pixmap_t m_pixmap;
};

} // namespace vantry
