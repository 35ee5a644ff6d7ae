#pragma once

#include "platform/SoundStream.h"

#include <memory>

namespace vantry {

class PipeWireLoop;

/// Hears while it exists what other programs play, mixed: two channels, interleaved. Programs may begin and end meanwhile, and play
/// to any output; what this process plays is not heard. While nothing plays there are samples all the same, of silence. Opened and
/// closed on any thread but the loop's; the loop must outlive it.
class SystemSound {
public:
    static constexpr int channels = 2;
    using Handlers = SoundStream::Handlers;

    /// Throws AppError when the media server has no stream for it.
    SystemSound(PipeWireLoop& loop, Handlers handlers);
    ~SystemSound();

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantry
