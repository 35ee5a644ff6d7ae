#pragma once

#include "platform/PixelRect.h"
#include "platform/SharedImages.h"
#include "platform/Xcb.h"

#include <cstdint>
#include <vector>

namespace vantry {

/// The mouse pointer as it is seen, which grabbed pictures lack.
class CursorImage {
public:
    explicit CursorImage(const xcb::Connection&);

    void handle(const xcb_generic_event_t&);

    /// Asks the server where the pointer is and, when it changed, what it looks like. True when it is seen differently from before.
    bool update();

    /// On the desktop.
    const PixelRect& area() const { return m_area; }

    void draw(const PixelBlock&) const;

private:
    void fetchShape();

    const xcb::Connection& m_connection;
    const int m_event;
    bool m_shapeIsStale = true;
    PixelRect m_area; ///< Where it was last seen.
    int m_hotX = 0;
    int m_hotY = 0;
    int m_width = 0;
    int m_height = 0;
    std::vector<std::uint32_t> m_pixels; ///< Alpha, red, green, blue from the highest bits on; premultiplied.
};

} // namespace vantry
