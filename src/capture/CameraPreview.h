#pragma once

#include "capture/Sample.h"

#include <functional>
#include <mutex>
#include <optional>

namespace vantry {

/// The newest picture of the camera for whoever shows it. Safe to use from any thread.
class CameraPreview {
public:
    /// Nothing while no camera delivers.
    std::optional<PictureSample> latest() const;

    /// Called on any thread, for each picture and when there is none any more; whoever shows them throttles. The handler that was
    /// set before does not run any more when this returns; it must not set another one itself.
    void setOnChange(std::function<void()> handler);

    /// For the capture session.
    void set(std::optional<PictureSample> sample);

private:
    mutable std::mutex m_mutex;
    std::optional<PictureSample> m_latest; ///< Guarded by the mutex.

    std::mutex m_handlerMutex;
    std::function<void()> m_onChange; ///< Guarded by its mutex, also while it runs.
};

} // namespace vantry
