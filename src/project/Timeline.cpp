#include "project/Timeline.h"

#include <algorithm>

namespace vantry {

double totalLength(const Project& project)
{
    double length = 0;
    for (const auto& clip : project.clips)
        length += clip.keep;
    return length;
}

std::vector<double> clipJoins(const Project& project)
{
    std::vector<double> joins;
    double position = 0;
    for (std::size_t next = 1; next < project.clips.size(); ++next) {
        position += project.clips[next - 1].keep;
        joins.push_back(position);
    }
    return joins;
}

LayoutEvent layoutInForce(const Project& project, double time)
{
    const auto& layouts = project.layouts;
    if (layouts.empty())
        return layoutOfNoEvents;
    const auto event = std::find_if(
        layouts.rbegin(), layouts.rend(), [&](const auto& candidate) { return candidate.time <= time + layoutLookupSlack; });
    return event == layouts.rend() ? layouts.front() : *event;
}

} // namespace vantry
