#pragma once

#include "base/HostTime.h"

#include <chrono>
#include <cmath>
#include <cstdint>
#include <ratio>

namespace vantry {

/// A time or a length in a movie. The unit divides every time base that our files use (30, 600, 48000, 90000 … per second), so
/// times read from them are exact.
using MediaTime = std::chrono::duration<std::int64_t, std::ratio<1, 705'600'000>>;

/// The timeline's unit: kept lengths and seeks are rounded to it.
using TimelineTime = std::chrono::duration<std::int64_t, std::ratio<1, 600>>;

/// The export's and the preview's frame rate.
inline constexpr int framesPerSecond = 30;
inline constexpr MediaTime frameDuration{ MediaTime::period::den / framesPerSecond };

/// The nearest time on the timeline.
inline TimelineTime timelineTime(double seconds)
{
    return TimelineTime(std::llround(seconds * TimelineTime::period::den));
}

/// The nearest media time of a length measured on the host clock.
constexpr MediaTime mediaTime(HostDuration duration)
{
    return std::chrono::round<MediaTime>(duration);
}

} // namespace vantry
