#include "support/TestDesktop.h"

#include <xcb/shape.h>

namespace vantry::test {

xcb_window_t TestDesktop::open(const Look& look)
{
    const auto window = xcb_generate_id(m_connection);
    const auto& place = look.place;
    const std::uint32_t values[] = { look.colour, 0xFFFFFF, look.managed ? 0u : 1u };
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, window, m_connection.root(), static_cast<std::int16_t>(place.x),
        static_cast<std::int16_t>(place.y), static_cast<std::uint16_t>(place.width), static_cast<std::uint16_t>(place.height),
        static_cast<std::uint16_t>(look.border), XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
        XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT, values);
    if (look.process)
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, window, m_connection.atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1,
            &*look.process);
    show(window);
    return window;
}

void TestDesktop::close(xcb_window_t window)
{
    xcb_destroy_window(m_connection, window);
    xcb_flush(m_connection);
}

void TestDesktop::show(xcb_window_t window)
{
    xcb_map_window(m_connection, window);
    xcb_flush(m_connection);
}

void TestDesktop::hide(xcb_window_t window)
{
    xcb_unmap_window(m_connection, window);
    xcb_flush(m_connection);
}

void TestDesktop::place(xcb_window_t window, const PixelRect& place)
{
    configure(window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
        { static_cast<std::uint32_t>(place.x), static_cast<std::uint32_t>(place.y), static_cast<std::uint32_t>(place.width),
            static_cast<std::uint32_t>(place.height) });
}

void TestDesktop::raise(xcb_window_t window)
{
    configure(window, XCB_CONFIG_WINDOW_STACK_MODE, { XCB_STACK_MODE_ABOVE });
}

void TestDesktop::lower(xcb_window_t window)
{
    configure(window, XCB_CONFIG_WINDOW_STACK_MODE, { XCB_STACK_MODE_BELOW });
}

void TestDesktop::configure(xcb_window_t window, std::uint16_t mask, const std::vector<std::uint32_t>& values)
{
    xcb_configure_window(m_connection, window, mask, values.data());
    xcb_flush(m_connection);
}

void TestDesktop::fill(xcb_window_t window, const PixelRect& area, std::uint32_t colour)
{
    const auto context = xcb_generate_id(m_connection);
    const xcb_rectangle_t rectangle{ static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
        static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height) };
    xcb_create_gc(m_connection, context, window, XCB_GC_FOREGROUND, &colour);
    xcb_poly_fill_rectangle(m_connection, window, context, 1, &rectangle);
    xcb_free_gc(m_connection, context);
    xcb_flush(m_connection);
}

void TestDesktop::shape(xcb_window_t window, const std::vector<PixelRect>& parts)
{
    std::vector<xcb_rectangle_t> rectangles;
    for (const auto& part : parts)
        rectangles.push_back({ static_cast<std::int16_t>(part.x), static_cast<std::int16_t>(part.y),
            static_cast<std::uint16_t>(part.width), static_cast<std::uint16_t>(part.height) });
    xcb_shape_rectangles(m_connection, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_BOUNDING, XCB_CLIP_ORDERING_UNSORTED, window, 0, 0,
        static_cast<std::uint32_t>(rectangles.size()), rectangles.data());
    xcb_flush(m_connection);
}

void TestDesktop::movePointer(int x, int y)
{
    xcb_warp_pointer(
        m_connection, XCB_NONE, m_connection.root(), 0, 0, 0, 0, static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
    xcb_flush(m_connection);
}

void TestDesktop::setRootColour(std::uint32_t colour)
{
    xcb_change_window_attributes(m_connection, m_connection.root(), XCB_CW_BACK_PIXEL, &colour);
    xcb_clear_area(m_connection, 0, m_connection.root(), 0, 0, 0, 0);
    xcb_flush(m_connection);
}

void TestDesktop::finish()
{
    static_cast<void>(m_connection.receive(xcb_get_input_focus_reply, xcb_get_input_focus(m_connection)));
}

std::vector<std::uint32_t> TestDesktop::pixels(const PixelRect& area)
{
    const auto cookie = xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_connection.root(),
        static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
        static_cast<std::uint16_t>(area.height), ~0u);
    const auto reply = m_connection.receive(xcb_get_image_reply, cookie);
    if (!reply)
        return {};
    const auto* first = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()));
    std::vector<std::uint32_t> pixels(first, first + area.width * area.height);
    for (auto& pixel : pixels)
        pixel &= 0xFFFFFF;
    return pixels;
}

} // namespace vantry::test
