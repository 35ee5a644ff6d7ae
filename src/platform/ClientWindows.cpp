#include "platform/ClientWindows.h"

#include "platform/WindowProperties.h"

#include <algorithm>
#include <optional>
#include <sstream>
#include <xcb/res.h>

namespace vantry {

namespace {

std::uint32_t processOf(const xcb::Connection& connection, xcb_window_t window)
{
    const xcb_res_client_id_spec_t wanted{ .client = window, .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID };
    const auto reply = connection.receive(xcb_res_query_client_ids_reply, xcb_res_query_client_ids(connection, 1, &wanted));
    if (reply)
        for (auto ids = xcb_res_query_client_ids_ids_iterator(reply.get()); ids.rem > 0; xcb_res_client_id_value_next(&ids))
            if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) && ids.data->length >= sizeof(std::uint32_t))
                return *xcb_res_client_id_value_value(ids.data);
    const auto signature = windowNumbers(connection, window, connection.atom("_NET_WM_PID"));
    return signature.empty() ? 0 : signature.front();
}

std::vector<std::string> classesOf(const xcb::Connection& connection, xcb_window_t window)
{
    std::vector<std::string> classes;
    std::istringstream text(windowText(connection, window, XCB_ATOM_WM_CLASS));
    for (std::string name; std::getline(text, name, '\0');)
        classes.push_back(name);
    return classes;
}

std::string titleOf(const xcb::Connection& connection, xcb_window_t window)
{
    const auto title = windowText(connection, window, connection.atom("_NET_WM_NAME"));
    return title.empty() ? windowText(connection, window, XCB_ATOM_WM_NAME) : title;
}

PixelRect withoutShadow(const xcb::Connection& connection, xcb_window_t window, const PixelRect& place)
{
    enum { Left, Right, Top, Bottom, Sides };
    const auto shadow = windowNumbers(connection, window, connection.atom("_GTK_FRAME_EXTENTS"));
    if (shadow.size() != Sides)
        return place;
    const auto side = [&](std::size_t number) { return static_cast<int>(std::min(shadow[number], 1000u)); };
    return { place.x + side(Left), place.y + side(Top), place.width - side(Left) - side(Right),
        place.height - side(Top) - side(Bottom) };
}

std::optional<PixelRect> placeOf(const xcb::Connection& connection, xcb_window_t window)
{
    const auto attributesCookie = xcb_get_window_attributes(connection, window);
    const auto geometryCookie = xcb_get_geometry(connection, window);
    const auto originCookie = xcb_translate_coordinates(connection, window, connection.root(), 0, 0);
    const auto attributes = connection.receive(xcb_get_window_attributes_reply, attributesCookie);
    const auto geometry = connection.receive(xcb_get_geometry_reply, geometryCookie);
    const auto origin = connection.receive(xcb_translate_coordinates_reply, originCookie);
    if (!attributes || !geometry || !origin || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
        return std::nullopt;
    return PixelRect{ origin->dst_x, origin->dst_y, geometry->width, geometry->height };
}

} // namespace

std::vector<ClientWindow> clientWindows(const xcb::Connection& connection)
{
    std::vector<ClientWindow> windows;
    auto ids = windowNumbers(connection, connection.root(), connection.atom("_NET_CLIENT_LIST_STACKING"));
    std::reverse(ids.begin(), ids.end());
    for (const auto id : ids) {
        const auto place = placeOf(connection, id);
        if (!place)
            continue;
        windows.push_back({ .id = id,
            .process = processOf(connection, id),
            .place = *place,
            .content = withoutShadow(connection, id, *place),
            .title = titleOf(connection, id),
            .classes = classesOf(connection, id) });
    }
    return windows;
}

} // namespace vantry
