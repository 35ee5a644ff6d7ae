#pragma once

#include "project/Project.h"

namespace vantry {

inline Clip clipKeeping(double keep)
{
    return { .file = "clip.mov", .duration = keep, .keep = keep };
}

inline Project projectOfKeeps(const std::vector<double>& keeps)
{
    Project project{ .layouts = { { .time = 0, .layout = Layout::camera } } };
    for (const auto keep : keeps)
        project.clips.push_back(clipKeeping(keep));
    return project;
}

inline Overlay overlayAt(double start, double duration)
{
    return { .start = start, .duration = duration };
}

} // namespace vantry
