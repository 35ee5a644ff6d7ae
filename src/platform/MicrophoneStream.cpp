#include "platform/MicrophoneStream.h"

#include <pipewire/keys.h>
#include <utility>

namespace vantry {

namespace {

SoundStream::Options optionsFor(const std::string& microphone)
{
    return { .what = "The microphone",
        .name = "microphone",
        .channels = 1,
        .properties = { { PW_KEY_TARGET_OBJECT, microphone }, { PW_KEY_NODE_DONT_RECONNECT, "true" } } };
}

} // namespace

MicrophoneStream::MicrophoneStream(PipeWireLoop& loop, const std::string& microphone, Handlers handlers)
    : m_stream(loop, optionsFor(microphone), std::move(handlers))
{
}

} // namespace vantry
