#include "platform/CursorImage.h"

#include "platform/TranslucentRow.h"

#include <xcb/xfixes.h>

namespace vantry {

CursorImage::CursorImage(const xcb::Connection& connection)
    : m_connection(connection)
    , m_event(connection.firstEvent(xcb_xfixes_id) + XCB_XFIXES_CURSOR_NOTIFY)
{
    xcb_xfixes_select_cursor_input(connection, connection.root(), XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
}

void CursorImage::handle(const xcb_generic_event_t& event)
{
    m_shapeIsStale |= (event.response_type & 0x7F) == m_event;
}

bool CursorImage::update()
{
    const bool shapeChanged = m_shapeIsStale;
    if (m_shapeIsStale)
        fetchShape();
    const auto pointer = m_connection.receive(xcb_query_pointer_reply, xcb_query_pointer(m_connection, m_connection.root()));
    if (!pointer)
        return shapeChanged;
    const PixelRect area{ pointer->root_x - m_hotX, pointer->root_y - m_hotY, m_width, m_height };
    const bool moved = area != m_area;
    m_area = area;
    return moved || shapeChanged;
}

void CursorImage::fetchShape()
{
    m_shapeIsStale = false;
    const auto image = m_connection.receive(xcb_xfixes_get_cursor_image_reply, xcb_xfixes_get_cursor_image(m_connection));
    if (!image)
        return;
    m_hotX = image->xhot;
    m_hotY = image->yhot;
    m_width = image->width;
    m_height = image->height;
    const auto* first = xcb_xfixes_get_cursor_image_cursor_image(image.get());
    m_pixels.assign(first, first + m_width * m_height);
}

void CursorImage::draw(const PixelBlock& block) const
{
    const auto common = m_area.common(block.area);
    for (int y = common.y; y < common.bottom(); ++y) {
        const auto* source = m_pixels.data() + (y - m_area.y) * m_width + (common.x - m_area.x);
        drawTranslucentRow(reinterpret_cast<const std::uint8_t*>(source), block.at(common.x, y), common.width);
    }
}

} // namespace vantry
