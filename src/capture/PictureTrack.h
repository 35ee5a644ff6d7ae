#pragma once

#include "media/PictureScaler.h"
#include "media/VideoEncoder.h"
#include "media/VideoReader.h"

#include <optional>

namespace vantry {

/// One track of pictures at times of their own, as a clip has it, with a keyframe in every second in which there are pictures: the
/// latest picture is held back until the time of the next one says whether it must be a keyframe. One thread at a time.
class PictureTrack {
public:
    /// Throws AppError when there is no such encoder.
    explicit PictureTrack(const VideoEncoderSettings& settings);

    const VideoEncoder& encoder() const { return m_encoder; }
    bool isEmpty() const { return !m_held; }

    /// Pictures of any size. False when this one is left out because it is not later than the one before it. Throws AppError.
    bool write(const Picture& picture, MediaTime time, const PacketSink& sink);
    bool writeBlack(MediaTime time, const PacketSink& sink);
    void finish(const PacketSink& sink);

    /// Repeats the latest picture, from `time` on, until the encoder has let go of it: it keeps the last few to itself.
    void writeOut(MediaTime time, const PacketSink& sink);

private:
    void encodeHeld(PictureKind kind, const PacketSink& sink);

    const PictureSize m_size;
    const MediaTime m_tick;
    VideoEncoder m_encoder;
    PictureScaler m_scaler;
    std::optional<TimedPicture> m_held;
    std::optional<MediaTime> m_lastKeyframe;
};

} // namespace vantry
