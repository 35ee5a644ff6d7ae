#pragma once

#include "media/Damage.h"
#include "media/Demuxer.h"

#include <optional>

namespace vantry {

/// One track of a movie as decoded frames, in the order they are presented. For the sources of this room only. One thread at a
/// time.
class Decoder {
public:
    struct Options {
        TrackMedia media = TrackMedia::Video;
        DamageSink onDamage{};
    };

    /// Throws AppError naming the file.
    Decoder(const std::filesystem::path& movie, int track, Options options);

    /// Nothing at the end of the track. What cannot be read or decoded is left out up to the next packet that needs none before
    /// it. Throws AppError.
    libav::FramePtr next();

    /// When a frame of this decoder is presented.
    MediaTime time(const AVFrame& frame) const { return m_demuxer.time(frame.best_effort_timestamp); }

    /// The next frame is that of a keyframe at or before `time` in decoding order.
    void seek(MediaTime time);

    /// When the track's first frame is presented.
    MediaTime start() const;

    const std::string& complaint() const { return m_demuxer.complaint(); }

private:
    bool isGood(const AVFrame& frame) const;
    void feed();
    TimeRange range(const AVPacket& packet) const;
    void leaveOut(TimeRange range);
    void goOn();

    Demuxer m_demuxer;
    const DamageSink m_onDamage;
    libav::CodecContextPtr m_codec;
    libav::PacketPtr m_packet = libav::makePacket();
    bool m_isRead = false; ///< The packet was not decoded yet.
    std::optional<TimeRange> m_damage; ///< What is being left out; meanwhile the codec gives what stands before it.
};

} // namespace vantry
