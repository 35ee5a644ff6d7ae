#pragma once

#include "media/Picture.h"

#include <filesystem>

namespace vantry::test {

/// Makes a project in `folder` of a clip of this many seconds (at most 5), played this many times, that shows only its screen.
/// Which of the clip's frames is seen can be told: a bar moves over it.
void writeTestProject(const std::filesystem::path& folder, double length, int times = 1);

/// Where the bar begins in this frame, as a fraction of the picture's width.
inline constexpr double barPlace(int frame)
{
    return 4 * frame / 640.0;
}

/// Which frame of such a project's clip is shown, in whatever size. -1 where there is none.
int frameOfBar(const Picture& picture);

} // namespace vantry::test
