#pragma once

#include "capture/ClipWriter.h"

#include <future>

namespace vantry::test {

/// Finishes the clip and waits for it.
inline ClipOutcome finishedClip(ClipWriter& writer, HostTime end)
{
    std::promise<ClipOutcome> promise;
    writer.finish(end, [&](const ClipOutcome& outcome) { promise.set_value(outcome); });
    return promise.get_future().get();
}

} // namespace vantry::test
