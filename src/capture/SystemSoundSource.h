#pragma once

#include "base/AppError.h"
#include "base/Worker.h"
#include "capture/Sample.h"

#include <functional>
#include <memory>
#include <optional>

namespace vantry {

/// Other programs' sound on the capture queue, in two channels, while it exists; silence while nobody plays. When the media server
/// ends or does not answer, it says so and comes back with the server. Opened and closed on any thread but the capture queue.
class SystemSoundSource {
public:
    /// Both are called on the capture queue, and never after the source is destroyed.
    struct Handlers {
        std::function<void(SoundSample)> onSound;

        /// With the reason: nothing comes any more, for now. Without one: it comes again.
        std::function<void(const std::optional<AppError>&)> onChange;
    };

    /// Throws AppError when there is no media server. The queue must outlive the source.
    SystemSoundSource(Worker& captureQueue, Handlers handlers);
    ~SystemSoundSource();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantry
