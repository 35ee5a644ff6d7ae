#include "platform/WindowStack.h"

#include <algorithm>
#include <xcb/shape.h>

namespace vantry {

namespace {

/// The cookies of everything that is asked about one window.
struct Questions {
    xcb_window_t window;
    xcb_get_window_attributes_cookie_t attributes;
    xcb_get_geometry_cookie_t geometry;
    xcb_shape_query_extents_cookie_t extents;
    xcb_shape_get_rectangles_cookie_t shape;
};

/// Of a window without a shape the server's rectangles lack the border on two sides, so they count only where there is a shape.
std::vector<PixelRect> visibleParts(const xcb_shape_query_extents_reply_t* extents, const xcb_shape_get_rectangles_reply_t* reply,
    const PixelRect& frame, int border)
{
    if (!reply || !extents || !extents->bounding_shaped)
        return { frame };
    std::vector<PixelRect> parts;
    const auto* first = xcb_shape_get_rectangles_rectangles(reply);
    for (int i = 0; i < xcb_shape_get_rectangles_rectangles_length(reply); ++i) {
        const PixelRect part{ first[i].x, first[i].y, first[i].width, first[i].height };
        const auto inside = part.moved(frame.x + border, frame.y + border).common(frame);
        if (!inside.isEmpty())
            parts.push_back(inside);
    }
    return parts;
}

const TopWindow* find(const std::vector<TopWindow>& windows, xcb_window_t id)
{
    const auto found = std::find_if(windows.begin(), windows.end(), [&](const TopWindow& window) { return window.id == id; });
    return found == windows.end() ? nullptr : &*found;
}

/// The windows of `stack` that are in the other one as well.
std::vector<const TopWindow*> shared(const std::vector<TopWindow>& stack, const std::vector<TopWindow>& other)
{
    std::vector<const TopWindow*> windows;
    for (const auto& window : stack)
        if (find(other, window.id))
            windows.push_back(&window);
    return windows;
}

std::vector<PixelRect> differences(const std::vector<TopWindow>& before, const std::vector<TopWindow>& after)
{
    std::vector<PixelRect> areas;
    for (const auto& window : before)
        if (const auto* now = find(after, window.id); !now || *now != window)
            areas.push_back(window.frame);
    for (const auto& window : after)
        if (const auto* earlier = find(before, window.id); !earlier || *earlier != window)
            areas.push_back(window.frame);
    const auto oldOrder = shared(before, after), newOrder = shared(after, before);
    for (std::size_t i = 0; i < newOrder.size(); ++i)
        if (oldOrder[i]->id != newOrder[i]->id)
            areas.push_back(newOrder[i]->frame);
    return areas;
}

} // namespace

WindowStack::WindowStack(const xcb::Connection& connection, WindowOwners owners)
    : m_connection(connection)
    , m_shapeEvent(connection.firstEvent(xcb_shape_id) + XCB_SHAPE_NOTIFY)
    , m_owners(std::move(owners))
{
}

void WindowStack::handle(const xcb_generic_event_t& event)
{
    switch (const auto type = event.response_type & 0x7F; type) {
    case XCB_CREATE_NOTIFY:
        m_owners.forget(reinterpret_cast<const xcb_create_notify_event_t&>(event).window);
        break;
    case XCB_DESTROY_NOTIFY: // Its number may be used again.
        m_owners.forget(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
        m_isStale = true;
        break;
    case XCB_REPARENT_NOTIFY: // A window came into a frame; the event does not tell into which of ours.
        m_owners.forgetAll();
        m_isStale = true;
        break;
    case XCB_MAP_NOTIFY:
        m_owners.forget(reinterpret_cast<const xcb_map_notify_event_t&>(event).window);
        m_sawNewWindow = m_isStale = true;
        break;
    case XCB_UNMAP_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
    case XCB_GRAVITY_NOTIFY:
    case XCB_CIRCULATE_NOTIFY:
        m_isStale = true;
        break;
    default:
        m_isStale |= type == m_shapeEvent;
    }
}

std::vector<PixelRect> WindowStack::update()
{
    m_sawNewWindow = m_isStale = false;
    auto before = std::move(m_windows);
    m_windows = query();
    return differences(before, m_windows);
}

std::vector<TopWindow> WindowStack::query()
{
    const auto tree = m_connection.receive(xcb_query_tree_reply, xcb_query_tree(m_connection, m_connection.root()));
    if (!tree)
        return {};
    std::vector<Questions> questions;
    const auto* ids = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        xcb_shape_select_input(m_connection, ids[i], 1);
        questions.push_back({ ids[i], xcb_get_window_attributes(m_connection, ids[i]), xcb_get_geometry(m_connection, ids[i]),
            xcb_shape_query_extents(m_connection, ids[i]), xcb_shape_get_rectangles(m_connection, ids[i], XCB_SHAPE_SK_BOUNDING) });
    }
    std::vector<TopWindow> windows;
    for (const auto& question : questions) {
        const auto attributes = m_connection.receive(xcb_get_window_attributes_reply, question.attributes);
        const auto geometry = m_connection.receive(xcb_get_geometry_reply, question.geometry);
        const auto extents = m_connection.receive(xcb_shape_query_extents_reply, question.extents);
        const auto shape = m_connection.receive(xcb_shape_get_rectangles_reply, question.shape);
        if (!attributes || !geometry || attributes->map_state != XCB_MAP_STATE_VIEWABLE
            || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
            continue;
        const int border = geometry->border_width;
        const PixelRect frame{ geometry->x, geometry->y, geometry->width + 2 * border, geometry->height + 2 * border };
        windows.push_back({ .id = question.window,
            .frame = frame,
            .border = border,
            .depth = geometry->depth,
            .shape = visibleParts(extents.get(), shape.get(), frame, border) });
    }
    for (auto& window : windows)
        window.excluded = m_owners.owns(window.id);
    return windows;
}

} // namespace vantry
