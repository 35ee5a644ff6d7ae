#pragma once

#include "project/Project.h"

#include <string>

namespace vantry {

// The edits whose rules are the project's own. A time that is not a number, which no caller should have, changes nothing.

/// A change this close to another one, in seconds, takes its place.
inline constexpr double layoutMergeDistance = 0.05;

/// A cut keeps only clips longer than this, in seconds.
inline constexpr double shortestKeptClip = 0.05;

/// Keeps what lies before `at`: shortens or drops clips and overlays and drops the layout events after it, so that the layout at
/// the cut stays as it was. The clips' files are left alone.
void cut(Project&, double at);

/// Puts a finished clip of this length at the end, unless it is there already.
void append(Project&, const std::string& file, double length);

/// From `at` on the layout is `layout` with the bubble in `corner`. A change that changes nothing adds nothing.
void setLayout(Project&, Layout, Corner, double at);

} // namespace vantry
