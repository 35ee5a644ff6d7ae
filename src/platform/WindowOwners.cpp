#include "platform/WindowOwners.h"

#include <algorithm>
#include <unistd.h>
#include <xcb/res.h>

namespace vantry {

namespace {

bool contains(const std::vector<std::uint32_t>& values, std::optional<std::uint32_t> value)
{
    return value && std::find(values.begin(), values.end(), *value) != values.end();
}

} // namespace

WindowOwners::WindowOwners(const xcb::Connection& connection, std::vector<pid_t> processes)
    : m_connection(connection)
    , m_processAtom(connection.atom("_NET_WM_PID"))
    , m_signatures(processes.begin(), processes.end())
    , m_clients(m_signatures)
{
    const auto ours = static_cast<std::uint32_t>(getpid());
    if (!contains(m_signatures, ours))
        return;
    if (const auto asServerSees = clientProcess(xcb_get_setup(connection)->resource_id_base))
        std::replace(m_clients.begin(), m_clients.end(), ours, *asServerSees);
}

bool WindowOwners::owns(xcb_window_t topLevel)
{
    const auto [entry, isNew] = m_known.try_emplace(topLevel);
    if (isNew)
        entry->second = madeByOwner(topLevel) || framesOwned(topLevel);
    return entry->second;
}

bool WindowOwners::madeByOwner(xcb_window_t window) const
{
    return contains(m_clients, clientProcess(window)) || contains(m_signatures, signedProcess(window));
}

/// A frame holds its client, some window managers with one window of theirs in between.
bool WindowOwners::framesOwned(xcb_window_t topLevel) const
{
    const auto isOwnedClient = [&](xcb_window_t window) {
        return !sameClient(window, topLevel) && madeByOwner(window) && fillsFrame(window, topLevel);
    };
    const auto inside = children(topLevel);
    return std::any_of(inside.begin(), inside.end(), [&](xcb_window_t child) {
        if (!sameClient(child, topLevel))
            return isOwnedClient(child);
        const auto further = children(child);
        return std::any_of(further.begin(), further.end(), isOwnedClient);
    });
}

/// Tells a framed window from a small one that was put into somebody's panel, such as an icon in a tray.
bool WindowOwners::fillsFrame(xcb_window_t child, xcb_window_t topLevel) const
{
    const auto childCookie = xcb_get_geometry(m_connection, child), frameCookie = xcb_get_geometry(m_connection, topLevel);
    const auto inner = m_connection.receive(xcb_get_geometry_reply, childCookie);
    const auto outer = m_connection.receive(xcb_get_geometry_reply, frameCookie);
    return inner && outer && 2 * inner->width * inner->height >= outer->width * outer->height;
}

std::vector<xcb_window_t> WindowOwners::children(xcb_window_t window) const
{
    const auto tree = m_connection.receive(xcb_query_tree_reply, xcb_query_tree(m_connection, window));
    if (!tree)
        return {};
    const auto* first = xcb_query_tree_children(tree.get());
    return { first, first + xcb_query_tree_children_length(tree.get()) };
}

std::optional<std::uint32_t> WindowOwners::clientProcess(std::uint32_t resource) const
{
    const xcb_res_client_id_spec_t wanted{ .client = resource, .mask = XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID };
    const auto reply = m_connection.receive(xcb_res_query_client_ids_reply, xcb_res_query_client_ids(m_connection, 1, &wanted));
    if (!reply)
        return std::nullopt;
    for (auto ids = xcb_res_query_client_ids_ids_iterator(reply.get()); ids.rem > 0; xcb_res_client_id_value_next(&ids))
        if ((ids.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID) && ids.data->length >= sizeof(std::uint32_t))
            return *xcb_res_client_id_value_value(ids.data);
    return std::nullopt;
}

std::optional<std::uint32_t> WindowOwners::signedProcess(xcb_window_t window) const
{
    const auto cookie = xcb_get_property(m_connection, 0, window, m_processAtom, XCB_ATOM_CARDINAL, 0, 1);
    const auto reply = m_connection.receive(xcb_get_property_reply, cookie);
    if (!reply || reply->format != 32 || xcb_get_property_value_length(reply.get()) < 4)
        return std::nullopt;
    return *static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
}

bool WindowOwners::sameClient(std::uint32_t a, std::uint32_t b) const
{
    const auto client = ~xcb_get_setup(m_connection)->resource_id_mask;
    return (a & client) == (b & client);
}

} // namespace vantry
