#pragma once

#include "media/Libav.h"
#include "media/TrackInfo.h"

#include <filesystem>
#include <vector>

namespace vantry {

/// A movie file's packets of one track; the other tracks' bytes are never read. Edit lists are applied: times are those at which a
/// player shows the packets. For the sources of this room only. One thread at a time.
class Demuxer {
public:
    /// Opens the file without choosing a track. Throws AppError naming the file.
    explicit Demuxer(const std::filesystem::path& movie);

    std::vector<TrackInfo> tracks() const;

    /// From now on `next` gives this track's packets. Throws AppError when there is no such track of this kind.
    void select(int track, TrackMedia media);

    /// The selected track.
    const AVStream& stream() const { return *track(); }
    MediaTime time(std::int64_t streamTime) const;

    /// False at the end of the track. What the file promises and does not give, because the disk refuses it or the file's end is
    /// missing, comes as packets that are empty, flagged as corrupt, and have their times. Throws AppError.
    bool next(AVPacket& packet);

    /// Goes to a keyframe at or before `time` in decoding order, or to the first one there is. Throws AppError.
    void seek(MediaTime time);

    /// For error texts: "Cannot read clip-1.mov".
    const std::string& complaint() const { return m_complaint; }

private:
    AVStream* track() const { return m_input->streams[m_track]; }
    bool isReadUp() const;
    bool makeUp(AVPacket& packet);

    std::string m_complaint;
    libav::InputPtr m_input;
    int m_track = -1;
    int m_following = 0; ///< Which of the file's index comes next.
};

} // namespace vantry
