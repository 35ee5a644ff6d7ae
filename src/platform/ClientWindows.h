#pragma once

#include "platform/PixelRect.h"
#include "platform/Xcb.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vantry {

/// A window of a program as the window manager knows it.
struct ClientWindow {
    xcb_window_t id = XCB_NONE;
    std::uint32_t process = 0; ///< As the server sees it, else as the window says; 0 when nobody knows.
    PixelRect place{}; ///< Without the window manager's frame, on the desktop.
    PixelRect content{}; ///< The same without a shadow that the program draws around itself.
    std::string title{};
    std::vector<std::string> classes{}; ///< The names by which it says what program it is of.
};

/// The windows that can be seen, from the front to the back.
std::vector<ClientWindow> clientWindows(const xcb::Connection& connection);

} // namespace vantry
