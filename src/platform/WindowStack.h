#pragma once

#include "platform/PixelRect.h"
#include "platform/WindowOwners.h"
#include "platform/Xcb.h"

#include <vector>

namespace vantry {

/// A window on the desktop as it is seen: directly under the root, mapped, with pixels.
struct TopWindow {
    xcb_window_t id = XCB_NONE;
    PixelRect frame{}; ///< With its border, on the desktop.
    int border = 0;
    int depth = 0;
    std::vector<PixelRect> shape{}; ///< What of the frame is really the window, on the desktop.
    bool excluded = false; ///< Belongs to a process whose windows are left out.

    bool operator==(const TopWindow&) const = default;
};

/// The top-level windows, kept up to date from the events of the root window.
class WindowStack {
public:
    WindowStack(const xcb::Connection&, WindowOwners);

    /// Takes in what an event says. The windows stay as they were until the next `update`.
    void handle(const xcb_generic_event_t&);

    bool isStale() const { return m_isStale; }

    /// A window was shown since the last `update`. It may be gone again by the next one.
    bool sawNewWindow() const { return m_sawNewWindow; }

    /// Asks the server anew. What looks different from then on, on the desktop.
    std::vector<PixelRect> update();

    /// From the bottom to the top.
    const std::vector<TopWindow>& windows() const { return m_windows; }

private:
    std::vector<TopWindow> query();
    void watchShape(xcb_window_t);

    const xcb::Connection& m_connection;
    const int m_shapeEvent;
    WindowOwners m_owners;
    std::vector<TopWindow> m_windows;
    bool m_isStale = true;
    bool m_sawNewWindow = false;
};

} // namespace vantry
