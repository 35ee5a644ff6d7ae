#include "platform/Displays.h"

#include "platform/Xcb.h"

#include <algorithm>
#include <set>
#include <xcb/randr.h>

namespace vantry {

namespace {

using Edid = std::string;

struct Monitor {
    Display display{};
    std::string connector{};
    Edid edid{};
    bool primary = false;
};

/// FNV-1a: the same number on every machine and in every version of this program. 0 is left out, it means "none chosen".
std::uint32_t stableNumber(const std::string& bytes)
{
    std::uint32_t hash = 2166136261u;
    for (const unsigned char byte : bytes)
        hash = (hash ^ byte) * 16777619u;
    return hash == 0 ? 1 : hash;
}

/// The name that a monitor's own description carries: the descriptor of type 0xFC in one of the four slots of the base block.
std::string monitorName(const Edid& edid)
{
    constexpr std::size_t firstSlot = 54, slotSize = 18, slots = 4, textOffset = 5;
    if (edid.size() < 128)
        return {};
    for (std::size_t i = 0; i < slots; ++i) {
        const auto slot = edid.substr(firstSlot + i * slotSize, slotSize);
        if (slot.compare(0, textOffset, std::string("\0\0\0\xFC\0", textOffset)) != 0)
            continue;
        auto name = slot.substr(textOffset);
        name.erase(std::min(name.find('\n'), name.size()));
        name.erase(name.find_last_not_of(' ') + 1);
        if (std::all_of(name.begin(), name.end(), [](unsigned char c) { return c >= 0x20 && c < 0x7F; }))
            return name;
    }
    return {};
}

Edid edidOf(const xcb::Connection& connection, xcb_randr_output_t output)
{
    constexpr std::uint32_t words = 128; // four blocks
    const auto cookie = xcb_randr_get_output_property(connection, output, connection.atom("EDID"), XCB_ATOM_ANY, 0, words, 0, 0);
    const auto reply = connection.receive(xcb_randr_get_output_property_reply, cookie);
    if (!reply || reply->format != 8)
        return {};
    const auto* bytes = reinterpret_cast<const char*>(xcb_randr_get_output_property_data(reply.get()));
    return Edid(bytes, static_cast<std::size_t>(xcb_randr_get_output_property_data_length(reply.get())));
}

std::string atomName(const xcb::Connection& connection, xcb_atom_t atom)
{
    const auto reply = connection.receive(xcb_get_atom_name_reply, xcb_get_atom_name(connection, atom));
    if (!reply)
        return {};
    return std::string(xcb_get_atom_name_name(reply.get()), static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())));
}

std::vector<Monitor> monitors(const xcb::Connection& connection)
{
    std::vector<Monitor> found;
    static_cast<void>(connection.receive(xcb_randr_query_version_reply, xcb_randr_query_version(connection, 1, 5)));
    const auto reply = connection.receive(xcb_randr_get_monitors_reply, xcb_randr_get_monitors(connection, connection.root(), 1));
    if (!reply)
        return found;
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0; xcb_randr_monitor_info_next(&it)) {
        const auto& info = *it.data;
        auto& monitor = found.emplace_back();
        monitor.display.x = info.x;
        monitor.display.y = info.y;
        monitor.display.width = info.width;
        monitor.display.height = info.height;
        monitor.connector = atomName(connection, info.name);
        monitor.primary = info.primary != 0;
        if (info.nOutput > 0)
            monitor.edid = edidOf(connection, *xcb_randr_monitor_info_outputs(it.data));
    }
    return found;
}

/// The whole desktop as one display, for a server that knows nothing of monitors.
Monitor wholeDesktop(const xcb::Connection& connection)
{
    const auto geometry = connection.receive(xcb_get_geometry_reply, xcb_get_geometry(connection, connection.root()));
    Monitor monitor;
    monitor.connector = "Screen";
    if (geometry) {
        monitor.display.width = geometry->width;
        monitor.display.height = geometry->height;
    }
    return monitor;
}

/// A monitor keeps its id on another connector; of two that describe themselves alike the later one takes its connector's name in.
void identify(std::vector<Monitor>& monitors)
{
    std::sort(monitors.begin(), monitors.end(), [](const Monitor& a, const Monitor& b) { return a.connector < b.connector; });
    std::set<std::uint32_t> taken;
    for (auto& monitor : monitors) {
        auto& display = monitor.display;
        const auto name = monitorName(monitor.edid);
        display.name = name.empty() ? monitor.connector : name;
        auto description = monitor.edid.empty() ? monitor.connector : monitor.edid;
        for (display.id = stableNumber(description); !taken.insert(display.id).second; display.id = stableNumber(description))
            description += monitor.connector + "+";
    }
}

} // namespace

std::vector<Display> displays()
{
    return displays(xcb::Connection());
}

std::vector<Display> displays(const xcb::Connection& connection)
{
    if (connection.isLost())
        return {};
    auto found = monitors(connection);
    if (found.empty())
        found.push_back(wholeDesktop(connection));
    identify(found);
    std::stable_sort(found.begin(), found.end(), [](const Monitor& a, const Monitor& b) { return a.primary > b.primary; });
    std::vector<Display> result;
    for (auto& monitor : found)
        if (monitor.display.width > 0 && monitor.display.height > 0)
            result.push_back(std::move(monitor.display));
    return result;
}

} // namespace vantry
