#include "platform/WindowProperties.h"

#include <cstddef>

namespace vantry {

namespace {

constexpr std::uint32_t mostWords = 4096;

xcb::Received<xcb_get_property_reply_t> property(const xcb::Connection& connection, xcb_window_t window, xcb_atom_t name)
{
    return connection.receive(
        xcb_get_property_reply, xcb_get_property(connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, mostWords));
}

} // namespace

std::vector<std::uint32_t> windowNumbers(const xcb::Connection& connection, xcb_window_t window, xcb_atom_t name)
{
    const auto reply = property(connection, window, name);
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return { first, first + static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / sizeof(std::uint32_t) };
}

std::string windowText(const xcb::Connection& connection, xcb_window_t window, xcb_atom_t name)
{
    const auto reply = property(connection, window, name);
    if (!reply || reply->format != 8)
        return {};
    return { static_cast<const char*>(xcb_get_property_value(reply.get())),
        static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) };
}

} // namespace vantry
