#pragma once

#include "platform/PixelRect.h"
#include "platform/Xcb.h"

#include <map>
#include <set>
#include <vector>
#include <xcb/damage.h>
#include <xcb/xfixes.h>

namespace vantry {

/// Watches windows for drawing in them. However much is drawn, the server reports it once until it was taken.
class DamageWatch {
public:
    explicit DamageWatch(const xcb::Connection&);
    ~DamageWatch();

    DamageWatch(const DamageWatch&) = delete;
    DamageWatch& operator=(const DamageWatch&) = delete;

    /// Watches exactly these windows from now on. A window that is new among them counts as drawn all over.
    void watch(const std::set<xcb_window_t>&);

    void handle(const xcb_generic_event_t&);

    /// What was drawn since the last time, for each window in its own pixels.
    std::map<xcb_window_t, std::vector<PixelRect>> take();

private:
    const xcb::Connection& m_connection;
    const int m_event;
    xcb_xfixes_region_t m_region;
    std::map<xcb_window_t, xcb_damage_damage_t> m_watched;
    std::set<xcb_window_t> m_drawn;
};

} // namespace vantry
