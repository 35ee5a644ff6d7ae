#include "platform/DamageWatch.h"

namespace vantry {

DamageWatch::DamageWatch(const xcb::Connection& connection)
    : m_connection(connection)
    , m_event(connection.firstEvent(xcb_damage_id) + XCB_DAMAGE_NOTIFY)
    , m_region(xcb_generate_id(connection))
{
    xcb_xfixes_create_region(connection, m_region, 0, nullptr);
}

DamageWatch::~DamageWatch()
{
    watch({});
    xcb_xfixes_destroy_region(m_connection, m_region);
}

void DamageWatch::watch(const std::set<xcb_window_t>& windows)
{
    // Destroying what went with its window is refused by the server and harms nothing.
    std::erase_if(m_watched, [&](const auto& entry) {
        const bool gone = !windows.contains(entry.first);
        if (gone)
            xcb_damage_destroy(m_connection, entry.second);
        return gone;
    });
    for (const auto window : windows) {
        const auto [entry, isNew] = m_watched.try_emplace(window);
        if (!isNew)
            continue;
        entry->second = xcb_generate_id(m_connection);
        xcb_damage_create(m_connection, entry->second, window, XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
    }
}

void DamageWatch::handle(const xcb_generic_event_t& event)
{
    const auto type = event.response_type & 0x7F;
    if (type == m_event)
        m_drawn.insert(reinterpret_cast<const xcb_damage_notify_event_t&>(event).drawable);
    else if (type == XCB_DESTROY_NOTIFY) // Another window may come under the same number.
        m_watched.erase(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
}

std::map<xcb_window_t, std::vector<PixelRect>> DamageWatch::take()
{
    // One region serves all: the requests run in the order in which they are sent.
    std::map<xcb_window_t, xcb_xfixes_fetch_region_cookie_t> cookies;
    for (const auto window : m_drawn) {
        const auto watched = m_watched.find(window);
        if (watched == m_watched.end())
            continue;
        xcb_damage_subtract(m_connection, watched->second, XCB_NONE, m_region);
        cookies[window] = xcb_xfixes_fetch_region(m_connection, m_region);
    }
    m_drawn.clear();
    std::map<xcb_window_t, std::vector<PixelRect>> drawn;
    for (const auto& [window, cookie] : cookies) {
        const auto reply = m_connection.receive(xcb_xfixes_fetch_region_reply, cookie);
        if (!reply)
            continue;
        const auto* first = xcb_xfixes_fetch_region_rectangles(reply.get());
        for (int i = 0; i < xcb_xfixes_fetch_region_rectangles_length(reply.get()); ++i)
            drawn[window].push_back({ first[i].x, first[i].y, first[i].width, first[i].height });
    }
    return drawn;
}

} // namespace vantry
