#pragma once

#include "base/AppError.h"
#include "base/HostTime.h"
#include "platform/PipeWire.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace vantry::pw {

/// A stream of sound from or to the media server: 48000 samples a second, floats, its channels interleaved. Opened and closed on
/// any thread but the loop's; the loop must outlive it.
class SoundConnection {
public:
    static constexpr int sampleRate = 48000;

    struct Options {
        std::string what; ///< Of a complaint: "The microphone".
        std::string name; ///< As users see it in their mixer.
        pw_direction direction = PW_DIRECTION_INPUT;
        int channels = 1; ///< One or two.
        int cycle = 1024; ///< Samples that are handled at once; the system may choose fewer.
        pw_stream_flags flags = PW_STREAM_FLAG_NONE; ///< Besides those of every stream.
        std::map<std::string, std::string> properties{}; ///< In the media server's words.
    };

    /// None is called after the connection is destroyed.
    struct Handlers {
        /// A buffer can be taken from the stream. On the media library's own thread, which must not wait for anything.
        std::function<void(pw_stream&)> onProcess;

        /// The stream can no longer be used, or could not at all: once, the last call. On the loop's thread.
        std::function<void(const AppError&)> onFailed;
    };

    /// Begins to open the stream. Throws AppError when that fails at once.
    SoundConnection(PipeWireLoop& loop, const Options& options, Handlers handlers);
    ~SoundConnection();

    SoundConnection(const SoundConnection&) = delete;
    SoundConnection& operator=(const SoundConnection&) = delete;

    /// Used on the loop's thread, or under its lock for what only asks.
    pw_stream& stream() const { return *m_stream; }

    /// The time of the cycle that is being processed; nothing before the first one, and in the first one that another device
    /// drives: then the server still tells the time of the one before, maybe long ago. Within `onProcess`.
    std::optional<pw_time> cycle();

private:
    void open(const Options& options);
    int connect(const Options& options);
    void end();
    void changeState(pw_stream_state state, const char* error);

    static const pw_stream_events events;

    PipeWireLoop& m_loop;
    const Handlers m_handlers;
    const std::string m_complaint;

    // Belong to the loop's thread, or to who has its lock.
    bool m_isOpen = false;
    bool m_hasEnded = false; ///< No handler is called any more.
    StreamPtr m_stream;
    spa_hook m_hook{}; ///< The stream ends it.

    // Belongs to the media library's thread.
    std::int64_t m_cycle = 0; ///< When the latest cycle began, in the server's words.
};

/// How long so many samples take.
inline HostDuration lengthOf(std::int64_t samples)
{
    return HostDuration(std::chrono::seconds(1)) * samples / SoundConnection::sampleRate;
}

/// `pw_time::delay` as a duration.
HostDuration delayOf(const pw_time& time);

} // namespace vantry::pw
