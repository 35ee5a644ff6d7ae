#pragma once

#include "media/MediaTime.h"

#include <functional>

namespace vantry {

/// A stretch of a movie's track, in the movie's times.
struct TimeRange {
    MediaTime from{};
    MediaTime to{};
};

/// Told what a reader left out because it cannot be read or decoded. Called on the reading thread.
using DamageSink = std::function<void(TimeRange)>;

} // namespace vantry
