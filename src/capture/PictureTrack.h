#pragma once

#include "media/PictureScaler.h"
#include "media/VideoEncoder.h"

#include <optional>

namespace vantry {

/// One track of pictures at times of their own, as a clip has it. One thread at a time.
class PictureTrack {
public:
    /// Throws AppError when there is no such encoder.
    explicit PictureTrack(const VideoEncoderSettings& settings);

    const VideoEncoder& encoder() const { return m_encoder; }
    bool isEmpty() const { return !m_last; }

    /// Pictures of any size. One that is not later than the one before it is left out. Throws AppError.
    void write(const Picture& picture, MediaTime time, const PacketSink& sink);
    void writeBlack(MediaTime time, const PacketSink& sink);
    void finish(const PacketSink& sink) { m_encoder.finish(sink); }

private:
    const PictureSize m_size;
    const MediaTime m_tick;
    VideoEncoder m_encoder;
    PictureScaler m_scaler;
    std::optional<MediaTime> m_last;
    MediaTime m_lastKeyframe{};
};

} // namespace vantry
