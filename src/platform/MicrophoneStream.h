#pragma once

#include "base/AppError.h"
#include "base/HostTime.h"

#include <functional>
#include <memory>
#include <span>
#include <string>

namespace vantry {

class PipeWireLoop;

/// Listens to one microphone while it exists: one channel, 48000 samples a second. Opened and closed on any thread but the loop's;
/// the loop must outlive it.
class MicrophoneStream {
public:
    static constexpr int sampleRate = 48000;

    /// Neither is called after the stream is destroyed.
    struct Handlers {
        /// Samples that follow each other and when the first of them was taken. Called on the media library's own thread, which
        /// must not wait for anything. A cycle that the server left out shows as a gap between the stamps.
        std::function<void(std::span<const float>, HostTime)> onSound;

        /// The microphone can no longer be used, or could not at all: once, the last call. On the loop's thread.
        std::function<void(const AppError&)> onFailed;
    };

    /// Begins to open the microphone with this identifier. Throws AppError when that fails at once.
    MicrophoneStream(PipeWireLoop& loop, const std::string& microphone, Handlers handlers);
    ~MicrophoneStream();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantry
