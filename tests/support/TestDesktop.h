#pragma once

#include "platform/PixelRect.h"
#include "platform/Xcb.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace vantry::test {

/// Windows of the test on the environment's X server, and a plain look at its screen. Requests are sent at once and not awaited.
class TestDesktop {
public:
    struct Look {
        PixelRect place{};
        std::uint32_t colour = 0; ///< 0xRRGGBB.
        int border = 0;
        std::optional<std::uint32_t> process{}; ///< Signed as that process's window.
        bool managed = false; ///< A window manager may put a frame around it.
    };

    xcb_window_t open(const Look&);
    void close(xcb_window_t);
    void show(xcb_window_t);
    void hide(xcb_window_t);
    void place(xcb_window_t, const PixelRect&);
    void raise(xcb_window_t);
    void lower(xcb_window_t);
    void fill(xcb_window_t, const PixelRect&, std::uint32_t colour);
    void shape(xcb_window_t, const std::vector<PixelRect>&);
    void movePointer(int x, int y);
    void setRootColour(std::uint32_t);

    /// Everything that was asked for has been done.
    void finish();

    /// The screen's pixels as 0xRRGGBB, without the cursor.
    std::vector<std::uint32_t> pixels(const PixelRect&);

    const xcb::Connection& connection() const { return m_connection; }

private:
    void configure(xcb_window_t, std::uint16_t mask, const std::vector<std::uint32_t>& values);

    xcb::Connection m_connection;
};

} // namespace vantry::test
