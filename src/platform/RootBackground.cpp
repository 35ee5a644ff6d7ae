#include "platform/RootBackground.h"

namespace vantry {

namespace {

/// What compositing managers paint when nobody named a wallpaper.
constexpr std::uint32_t compositorGrey = 0x808080;

/// How far left of the screen the window lies. A background that repeats must meet its origin there: most repeat after the screen's
/// width or a power of two, so go as far as 16 bits let us in steps of both.
int distance(int screenWidth)
{
    int steps = 1;
    while (steps < 64 && screenWidth * steps * 2 <= 32767)
        steps *= 2;
    return screenWidth * steps;
}

} // namespace

RootBackground::RootBackground(const xcb::Connection& connection)
    : m_connection(connection)
    , m_wallpaper(connection.atom("_XROOTPMAP_ID"))
    , m_rootColour(connection.atom("_XSETROOT_ID"))
    , m_window(xcb_generate_id(connection))
    , m_pixmap(xcb_generate_id(connection))
{
    const auto root = connection.receive(xcb_get_geometry_reply, xcb_get_geometry(connection, connection.root()));
    const auto width = root ? root->width : connection.screen().width_in_pixels;
    const auto height = root ? root->height : connection.screen().height_in_pixels;
    const std::uint32_t values[] = { XCB_BACK_PIXMAP_PARENT_RELATIVE, 1 };
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, m_window, connection.root(), static_cast<std::int16_t>(-distance(width)), 0,
        width, height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_BACK_PIXMAP | XCB_CW_OVERRIDE_REDIRECT,
        values);
    xcb_map_window(connection, m_window);
    xcb_composite_name_window_pixmap(connection, m_window, m_pixmap);
}

RootBackground::~RootBackground()
{
    xcb_free_pixmap(m_connection, m_pixmap);
    xcb_destroy_window(m_connection, m_window);
}

bool RootBackground::handle(const xcb_generic_event_t& event) const
{
    if ((event.response_type & 0x7F) != XCB_PROPERTY_NOTIFY)
        return false;
    const auto property = reinterpret_cast<const xcb_property_notify_event_t&>(event).atom;
    return property == m_wallpaper || property == m_rootColour;
}

void RootBackground::update(Painter painter)
{
    if (painter == Painter::Server)
        show(XCB_CW_BACK_PIXMAP, XCB_BACK_PIXMAP_PARENT_RELATIVE);
    else if (!showWallpaper())
        show(XCB_CW_BACK_PIXEL, compositorGrey);
}

bool RootBackground::showWallpaper()
{
    const auto cookie = xcb_get_property(m_connection, 0, m_connection.root(), m_wallpaper, XCB_ATOM_PIXMAP, 0, 1);
    const auto reply = m_connection.receive(xcb_get_property_reply, cookie);
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4)
        return false;
    // Whoever named it may have left without taking the property along: then the server refuses.
    const auto* pixmap = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return !m_connection.check(xcb_change_window_attributes_checked(m_connection, m_window, XCB_CW_BACK_PIXMAP, pixmap));
}

void RootBackground::show(std::uint32_t attribute, std::uint32_t value)
{
    xcb_change_window_attributes(m_connection, m_window, attribute, &value);
}

xcb_pixmap_t RootBackground::paint(const PixelRect& area)
{
    xcb_clear_area(m_connection, 0, m_window, static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y),
        static_cast<std::uint16_t>(area.width), static_cast<std::uint16_t>(area.height));
    return m_pixmap;
}

} // namespace vantry
