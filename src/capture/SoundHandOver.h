#pragma once

#include "base/Worker.h"
#include "capture/Sample.h"

#include <atomic>
#include <functional>

namespace vantry {

/// Brings sound from a media library's thread, which must not wait for anything, to the capture queue. A queue that is held up for
/// some seconds loses sound rather than memory.
class SoundHandOver {
public:
    /// Called on the capture queue, in the order of the sound.
    using Sink = std::function<void(SoundSample)>;

    /// The queue must outlive it, and what was taken has run before it is destroyed.
    SoundHandOver(Worker& captureQueue, Sink sink);

    /// On one thread at a time.
    void take(SoundSample sample);

private:
    Worker& m_captureQueue;
    const Sink m_sink;
    std::atomic<int> m_waiting = 0;
};

} // namespace vantry
