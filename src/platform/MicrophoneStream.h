#pragma once

#include "platform/SoundStream.h"

#include <string>

namespace vantry {

/// Listens to one microphone while it exists: one channel, 48000 samples a second. Opened and closed on any thread but the loop's;
/// the loop must outlive it.
class MicrophoneStream {
public:
    static constexpr int sampleRate = SoundStream::sampleRate;
    using Handlers = SoundStream::Handlers;

    /// Begins to open the microphone with this identifier. Throws AppError when that fails at once.
    MicrophoneStream(PipeWireLoop& loop, const std::string& microphone, Handlers handlers);

private:
    SoundStream m_stream;
};

} // namespace vantry
