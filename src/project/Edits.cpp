#include "project/Edits.h"

#include <algorithm>
#include <cmath>

namespace vantry {

namespace {

void cutClips(std::vector<Clip>& clips, double at)
{
    double position = 0;
    std::erase_if(clips, [&](Clip& clip) {
        if (position >= at)
            return true;
        clip.keep = std::min(at - position, clip.keep);
        position += clip.keep;
        return clip.keep <= shortestKeptClip;
    });
}

void cutOverlays(std::vector<Overlay>& overlays, double at)
{
    std::erase_if(overlays, [&](const Overlay& overlay) { return overlay.start >= at; });
    for (auto& overlay : overlays)
        overlay.duration = std::min(overlay.duration, at - overlay.start);
}

bool looksTheSame(const LayoutEvent& a, const LayoutEvent& b)
{
    return a.layout == b.layout && a.corner == b.corner;
}

} // namespace

void cut(Project& project, double at)
{
    if (std::isnan(at))
        return;
    // Nothing lies before 0, but the layout at 0 stays.
    at = std::max(at, 0.0);
    cutClips(project.clips, at);
    cutOverlays(project.overlays, at);
    std::erase_if(project.layouts, [&](const LayoutEvent& event) { return event.time > at; });
}

void append(Project& project, const std::string& file, double length)
{
    if (std::ranges::find(project.clips, file, &Clip::file) == project.clips.end())
        project.clips.push_back({ .file = file, .duration = length, .keep = length });
}

void setLayout(Project& project, Layout layout, Corner corner, double at)
{
    if (!std::isfinite(at))
        return;
    if (at < layoutMergeDistance)
        at = 0;
    auto& layouts = project.layouts;
    std::erase_if(layouts, [&](const LayoutEvent& event) { return std::abs(event.time - at) < layoutMergeDistance; });
    layouts.push_back({ .time = at, .layout = layout, .corner = corner });
    std::ranges::stable_sort(layouts, {}, &LayoutEvent::time);
    layouts.erase(std::unique(layouts.begin(), layouts.end(), looksTheSame), layouts.end());
}

} // namespace vantry
