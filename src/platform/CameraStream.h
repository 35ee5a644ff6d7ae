#pragma once

#include "base/AppError.h"
#include "platform/CameraFrame.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vantry {

class PipeWireLoop;

/// Looks through one camera while it exists. Asks for 1920x1080 at 30 pictures a second, packed or as JPEG images, else for the
/// nearest that the camera has. Opened and closed on any thread but the loop's; the loop must outlive it.
class CameraStream {
public:
    /// All are called on the loop's thread, which has to go on with other things, and never after the stream is destroyed.
    struct Handlers {
        std::function<void(const CameraFrame&)> onFrame;

        /// What the camera delivers from now on.
        std::function<void(const CameraMode&)> onMode;

        /// The camera can no longer be used, or could not at all: once, the last call.
        std::function<void(const AppError&)> onFailed;
    };

    /// Begins to open the camera with this identifier. Throws AppError when that fails at once.
    CameraStream(PipeWireLoop& loop, const std::string& camera, Handlers handlers);
    ~CameraStream();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantry
