#pragma once

#include "base/AppError.h"
#include "base/Worker.h"
#include "capture/Sample.h"
#include "platform/Displays.h"

#include <functional>
#include <memory>
#include <sys/types.h>
#include <vector>

namespace vantry {

/// One complete picture of the screen and when it was taken.
using ScreenFrame = PictureSample;

/// Records one display: a first frame right away, then one whenever something visible changed (the cursor, which is drawn in,
/// counts too), at most 30 a second. Windows of the excluded processes are left out and what lies beneath them is seen.
///
/// Grabs on a thread of its own and calls the handlers on the capture queue, which it never holds up: while six frames wait there,
/// no more are taken, and what changed meanwhile is in the next one.
class ScreenStream {
public:
    struct Options {
        std::vector<pid_t> excludedProcesses;
    };

    /// Both are called on the capture queue and never after `stop` returned.
    struct Handlers {
        std::function<void(const ScreenFrame&)> onFrame;

        /// The stream ended by itself (the display vanished or changed its size, the server closed the connection): once, the last
        /// call.
        std::function<void(const AppError&)> onError;
    };

    /// Starts. Throws AppError when the display cannot be recorded. The queue must outlive the stream.
    ScreenStream(const Display&, Worker& captureQueue, Handlers, Options);
    ~ScreenStream(); ///< Stops.

    /// The frames' size in pixels: the display's, rounded down to even numbers.
    int width() const;
    int height() const;

    /// No handler runs any more when it returns. Not to be called on the capture queue.
    void stop();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantry
