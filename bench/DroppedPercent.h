#pragma once

#include "capture/ClipWriter.h"

#include <algorithm>

namespace vantry::bench {

/// Of the track that fared worst.
inline double droppedPercent(const ClipOutcome& outcome)
{
    double worst = 0;
    for (const auto& count : outcome.counts)
        worst = std::max(worst, 100.0 * static_cast<double>(count.dropped) / static_cast<double>(count.appended + count.dropped));
    return worst;
}

} // namespace vantry::bench
