#include "platform/TopPanel.h"

#include "platform/WindowProperties.h"
#include "platform/Xcb.h"

#include <algorithm>
#include <optional>

namespace vantry {

namespace {

/// What a window keeps free at the desktop's upper edge: its height, and from where to where.
struct Strut {
    int bottom = 0;
    int left = 0;
    int right = 0;
};

std::optional<Strut> strutOf(const xcb::Connection& connection, xcb_window_t window, int desktopWidth)
{
    enum { Top = 2, TopStart = 8, TopEnd = 9 };
    const auto number = [](std::uint32_t value) { return static_cast<int>(std::min(value, 65535u)); };
    const auto partial = windowNumbers(connection, window, connection.atom("_NET_WM_STRUT_PARTIAL"));
    if (partial.size() > TopEnd)
        return Strut{ number(partial[Top]), number(partial[TopStart]), number(partial[TopEnd]) + 1 };
    const auto whole = windowNumbers(connection, window, connection.atom("_NET_WM_STRUT"));
    if (whole.size() > Top)
        return Strut{ number(whole[Top]), 0, desktopWidth };
    return std::nullopt;
}

/// Of the panels that are windows. One that lies on another display, or below its upper edge, does not count here.
int highestStrut(const xcb::Connection& connection, const Display& display)
{
    int height = 0;
    const int desktopWidth = connection.screen().width_in_pixels;
    for (const auto window : windowNumbers(connection, connection.root(), connection.atom("_NET_CLIENT_LIST"))) {
        const auto strut = strutOf(connection, window, desktopWidth);
        if (strut && strut->left < display.x + display.width && strut->right > display.x
            && strut->bottom < display.y + display.height)
            height = std::max(height, strut->bottom - display.y);
    }
    return height;
}

/// Of a panel that the window manager draws itself. It says so for the desktop as a whole, so only of a display that is all of it
/// this can be told.
int workAreaTop(const xcb::Connection& connection, const Display& display)
{
    const auto& screen = connection.screen();
    if (display.width != screen.width_in_pixels || display.height != screen.height_in_pixels)
        return 0;
    const auto areas = windowNumbers(connection, connection.root(), connection.atom("_NET_WORKAREA"));
    const auto desktop = windowNumbers(connection, connection.root(), connection.atom("_NET_CURRENT_DESKTOP"));
    const std::size_t top = 4 * (desktop.empty() ? 0 : desktop.front()) + 1;
    return top < areas.size() && areas[top] < screen.height_in_pixels ? static_cast<int>(areas[top]) : 0;
}

} // namespace

int topPanelHeight(const Display& display)
{
    const xcb::Connection connection;
    return std::max(highestStrut(connection, display), workAreaTop(connection, display));
}

} // namespace vantry
