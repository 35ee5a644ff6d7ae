#pragma once

#include "capture/SoundPlacement.h"
#include "media/AudioEncoder.h"

namespace vantry {

/// One track of sound without gaps, as a clip has it. One thread at a time.
class SoundTrack {
public:
    /// Throws AppError when there is no such encoder.
    explicit SoundTrack(const AudioEncoderSettings& settings)
        : m_encoder(settings)
        , m_placement(settings.channels)
    {
    }

    const AudioEncoder& encoder() const { return m_encoder; }
    bool isEmpty() const { return m_isEmpty; }

    /// `at` counts from the clip's start. Throws AppError.
    void write(const Sound& sound, HostDuration at, const PacketSink& sink)
    {
        m_isEmpty = false;
        m_placement.place(sound, at, [&](const Sound& placed) { m_encoder.encode(placed, sink); });
    }

    /// No more sound will come from before `end`.
    void fillUntil(SampleCount end, const PacketSink& sink)
    {
        m_placement.fillUntil(end, [&](const Sound& placed) { m_encoder.encode(placed, sink); });
    }

    /// Ends the track at `end`.
    void finish(SampleCount end, const PacketSink& sink)
    {
        fillUntil(end, sink);
        m_encoder.finish(sink);
    }

private:
    AudioEncoder m_encoder;
    SoundPlacement m_placement;
    bool m_isEmpty = true; ///< But for silence that nobody has delivered.
};

} // namespace vantry
