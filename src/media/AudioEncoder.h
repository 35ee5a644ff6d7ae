#pragma once

#include "media/Packet.h"
#include "media/Sound.h"

#include <memory>

struct AVCodecContext;

namespace vantry {

struct AudioEncoderSettings {
    int channels = 2;
    int bitRate = 0; ///< Bits per second.
};

/// Encodes sound to AAC-LC at `sampleRate`, without gaps: the first sample handed over is at `start`, every other follows the one
/// before it. One thread at a time.
class AudioEncoder {
public:
    /// Throws AppError when the encoder cannot be had with these settings.
    explicit AudioEncoder(const AudioEncoderSettings& settings);
    ~AudioEncoder();

    /// Any number of samples. Throws AppError.
    void encode(const Sound& sound, const PacketSink& sink);

    /// Gives out what is still inside; nothing can be encoded after it.
    void finish(const PacketSink& sink);

    /// The silence that the decoder makes before the first sample, in samples.
    int priming() const;

    /// For `Muxer`.
    const AVCodecContext& context() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
