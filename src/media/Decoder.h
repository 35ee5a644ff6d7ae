#pragma once

#include "media/Demuxer.h"

namespace vantry {

/// One track of a movie as decoded frames, in the order they are presented. For the sources of this room only. One thread at a
/// time.
class Decoder {
public:
    struct Options {
        TrackMedia media = TrackMedia::Video;
        int threads = 1;
    };

    /// Throws AppError naming the file.
    Decoder(const std::filesystem::path& movie, int track, Options options);

    /// Nothing at the end of the track. Throws AppError on data that cannot be decoded.
    libav::FramePtr next();

    /// When a frame of this decoder is presented.
    MediaTime time(const AVFrame& frame) const { return m_demuxer.time(frame.best_effort_timestamp); }

    /// The next frame is that of a keyframe at or before `time` in decoding order.
    void seek(MediaTime time);

    /// When the track's first frame is presented.
    MediaTime start() const;

    const std::string& complaint() const { return m_demuxer.complaint(); }

private:
    void feed();

    Demuxer m_demuxer;
    libav::CodecContextPtr m_codec;
    libav::PacketPtr m_packet = libav::makePacket();
};

} // namespace vantry
