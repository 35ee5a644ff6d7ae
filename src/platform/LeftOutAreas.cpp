#include "platform/LeftOutAreas.h"

#include <algorithm>
#include <utility>

namespace vantry {

namespace {

/// Longer than the usual fade of a compositing manager.
constexpr auto afterglow = std::chrono::milliseconds(600);

} // namespace

std::vector<PixelRect> LeftOutAreas::update(
    const std::vector<TopWindow>& windows, const PixelRect& bounds, Composition composition, HostTime now)
{
    const auto contains = [](const std::vector<Area>& areas, const PixelRect& rect) {
        return std::any_of(areas.begin(), areas.end(), [&](const Area& area) { return area.rect == rect; });
    };
    const auto before = std::exchange(m_areas, {});
    std::vector<PixelRect> changed;
    for (const auto& window : windows) {
        const auto rect = window.frame.common(bounds);
        if (window.excluded && !rect.isEmpty())
            m_areas.push_back({ rect, HostTime::max() });
    }
    for (const auto& [rect, previousEnd] : before) {
        if (contains(m_areas, rect))
            continue;
        const HostTime end = std::min<HostTime>(previousEnd, now + afterglow);
        if (composition == Composition::Delayed && now < end)
            m_areas.push_back({ rect, end });
        else
            changed.push_back(rect);
    }
    for (const auto& area : m_areas)
        if (!contains(before, area.rect))
            changed.push_back(area.rect);
    return changed;
}

std::vector<PixelRect> LeftOutAreas::within(const PixelRect& rect) const
{
    std::vector<PixelRect> found;
    for (const auto& area : m_areas)
        if (const auto common = area.rect.common(rect); !common.isEmpty())
            found.push_back(common);
    return found;
}

} // namespace vantry
