#pragma once

#include "base/Worker.h"
#include "capture/Sample.h"
#include "platform/CameraFrame.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace vantry {

/// Makes pictures of a camera's frames without holding up the thread that brings them: frames are copied and converted on a thread
/// of its own. A frame that comes while two others wait is discarded.
class CameraPictures {
public:
    /// Called on the thread of this object, in the order of the frames.
    using Handler = std::function<void(const PictureSample&)>;

    explicit CameraPictures(Handler handler);
    ~CameraPictures(); ///< The handler does not run any more when it returns.

    /// On one thread at a time.
    void take(const CameraFrame& frame);

private:
    class Converter;
    using Memory = std::vector<std::uint8_t>;

    Memory unusedMemory();
    void convert(const CameraFrame& frame);

    const Handler m_handler;
    std::atomic<int> m_waiting = 0;

    std::mutex m_mutex;
    std::vector<Memory> m_unused; ///< Guarded by the mutex.

    std::unique_ptr<Converter> m_converter; ///< Belongs to the worker.
    Worker m_worker{ "vantry.camera" };
};

} // namespace vantry
