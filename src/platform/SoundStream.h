#pragma once

#include "base/AppError.h"
#include "base/HostTime.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string>

namespace vantry {

class PipeWireLoop;

/// Takes sound from the media server while it exists: 48000 samples a second, floats, of several channels interleaved. Opened and
/// closed on any thread but the loop's; the loop must outlive it.
class SoundStream {
public:
    static constexpr int sampleRate = 48000;

    struct Options {
        std::string what; ///< Of a complaint: "The microphone".
        std::string name; ///< As users see it in their mixer.
        int channels = 1; ///< One or two.
        bool isConnected = true; ///< The session manager connects it with a device.
        std::map<std::string, std::string> properties{}; ///< Of the stream, in the media server's words.
    };

    /// None is called after the stream is destroyed.
    struct Handlers {
        /// Samples that follow each other and when the first of them was taken. Called on the media library's own thread, which
        /// must not wait for anything. A cycle that the server left out shows as a gap between the stamps.
        std::function<void(std::span<const float>, HostTime)> onSound;

        /// The stream can no longer be used, or could not at all: once, the last call. On the loop's thread.
        std::function<void(const AppError&)> onFailed;
    };

    /// Begins to open the stream. Throws AppError when that fails at once.
    SoundStream(PipeWireLoop& loop, const Options& options, Handlers handlers);
    ~SoundStream();

    /// The server's number for it; no number that is in use until the server has answered. With the loop's lock.
    std::uint32_t node() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantry
