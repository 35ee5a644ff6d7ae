#pragma once

#include "platform/PixelRect.h"
#include "platform/Xcb.h"

#include <cstddef>
#include <cstdint>
#include <vector>
#include <xcb/shm.h>

namespace vantry {

/// Pixels of one part of the desktop: in memory blue, green, red and one more byte (alpha where the source has it).
struct PixelBlock {
    PixelRect area{}; ///< On the desktop.
    std::uint8_t* data = nullptr;

    std::ptrdiff_t stride() const { return 4 * static_cast<std::ptrdiff_t>(area.width); }
    std::uint8_t* at(int x, int y) const { return data + (y - area.y) * stride() + 4 * static_cast<std::ptrdiff_t>(x - area.x); }
};

/// Images that the server writes into memory which we share with it. They are asked for one after the other and awaited together.
class SharedImages {
public:
    /// Room for that many pixels. Throws AppError when the server cannot share memory with us.
    SharedImages(const xcb::Connection&, int pixels);
    ~SharedImages();

    SharedImages(const SharedImages&) = delete;
    SharedImages& operator=(const SharedImages&) = delete;

    bool hasRoomFor(const PixelRect& area) const { return m_used + bytes(area) <= m_size; }

    /// Asks for the part of a drawable that is `area` on the desktop; the drawable's own origin lies at `origin` there.
    void request(xcb_drawable_t, const PixelRect& area, int originX, int originY);

    /// What was asked for, in that order; no `data` where the server refused. Valid until the next request.
    std::vector<PixelBlock> await();

private:
    struct Request {
        xcb_shm_get_image_cookie_t cookie;
        PixelBlock block;
    };

    static std::size_t bytes(const PixelRect& area)
    {
        return 4 * static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height);
    }

    const xcb::Connection& m_connection;
    const std::size_t m_size;
    xcb_shm_seg_t m_segment;
    std::uint8_t* m_memory;
    std::size_t m_used = 0;
    std::vector<Request> m_requests;
};

} // namespace vantry
