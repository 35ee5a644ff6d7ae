#pragma once

#include "project/Project.h"

#include <vector>

namespace vantry {

// A project's clips play back to back, each only up to its `keep`. Project time runs over that one timeline, clip time from the
// start of a clip's movie; both are seconds. Whoever asks for every frame asks a ProjectIndex instead.

/// An event counts from this many seconds before its time, so that a time which was rounded to a frame still finds it.
inline constexpr double layoutLookupSlack = 0.0001;

/// The sum of what is kept of every clip.
double totalLength(const Project&);

/// The times at which one clip ends and the next begins, ascending.
std::vector<double> clipJoins(const Project&);

/// What a project without any layout event shows: screen and camera, so that nothing which was recorded is hidden.
inline constexpr LayoutEvent layoutOfNoEvents{ .time = 0, .layout = Layout::bubble, .corner = Corner::bottomRight };

/// The last event of the list that is at or before `time`; the first of the list when all are later.
LayoutEvent layoutInForce(const Project&, double time);

} // namespace vantry
