#include "project/ProjectIndex.h"

#include "project/Timeline.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>

namespace vantry {

namespace {

/// Every event that is in force at some time. In a sorted list these are all but the earlier ones of equal time; in any other list
/// an event is hidden for ever by a later entry with an earlier time.
std::vector<std::size_t> positionsInForce(const std::vector<LayoutEvent>& layouts)
{
    std::vector<std::size_t> positions;
    double earliest = std::numeric_limits<double>::infinity();
    for (auto position = layouts.size(); position-- > 0;) {
        if (!(layouts[position].time < earliest))
            continue;
        earliest = layouts[position].time;
        positions.push_back(position);
    }
    std::ranges::reverse(positions);
    return positions;
}

/// An event's place in the list is that of the first event equal to it.
std::vector<ProjectIndex::LayoutInForce> layoutsInForce(const std::vector<LayoutEvent>& layouts)
{
    const auto identity = [](const LayoutEvent& event) { return std::tuple(event.time, event.layout, event.corner); };
    std::map<std::tuple<double, Layout, Corner>, std::size_t> places;
    for (std::size_t position = 0; position < layouts.size(); ++position) {
        if (!std::isnan(layouts[position].time))
            places.try_emplace(identity(layouts[position]), position);
    }

    std::vector<ProjectIndex::LayoutInForce> inForce;
    for (const auto position : positionsInForce(layouts)) {
        const auto place = places.at(identity(layouts[position]));
        inForce.push_back({ layouts[position], place > 0 ? std::optional(layouts[place - 1]) : std::nullopt });
    }
    return inForce;
}

std::vector<IntervalTree::Interval> timesOnScreen(const std::vector<Overlay>& overlays)
{
    std::vector<IntervalTree::Interval> intervals;
    intervals.reserve(overlays.size());
    for (const auto& overlay : overlays)
        intervals.push_back({ overlay.start, overlay.start + overlay.duration });
    return intervals;
}

} // namespace

ProjectIndex::ProjectIndex(const Project& project)
    : m_layouts(layoutsInForce(project.layouts))
    , m_firstLayout(project.layouts.empty() ? layoutOfNoEvents : project.layouts.front())
    , m_overlays(timesOnScreen(project.overlays))
{
    std::vector<IntervalTree::Interval> played;
    double start = 0;
    for (const auto& clip : project.clips) {
        m_clipStarts.push_back(start);
        played.push_back({ start, start + clip.keep });
        start += clip.keep;
    }
    m_clips = IntervalTree(played);
}

ProjectIndex::LayoutInForce ProjectIndex::layoutAt(double time) const
{
    const auto later =
        std::ranges::partition_point(m_layouts, [&](const auto& entry) { return entry.event.time <= time + layoutLookupSlack; });
    if (later == m_layouts.begin())
        return { m_firstLayout, std::nullopt };
    return *std::prev(later);
}

std::optional<ProjectIndex::ClipTime> ProjectIndex::clipAt(double time) const
{
    const auto clips = m_clips.holding(time);
    if (clips.empty())
        return std::nullopt;
    return ClipTime{ clips.front(), time - m_clipStarts[clips.front()] };
}

} // namespace vantry
