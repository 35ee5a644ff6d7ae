#pragma once

#include "media/VideoReader.h"
#include "render/CompositionPlan.h"

#include <memory>
#include <optional>
#include <vector>

namespace vantry {

/// The pictures of one role of a composition, for output times that grow from call to call. Opens a clip's file when its turn comes
/// and closes it after. One thread at a time.
class TrackPictures {
public:
    TrackPictures(std::vector<Segment> segments, VideoReader::Options options);

    /// The newest picture at or before `time`, as long as it is the newest the same one; null where the composition has none.
    /// Throws AppError.
    Picture at(MediaTime time);

private:
    const Segment* segmentAt(MediaTime time);
    void open(const Segment& segment, MediaTime sourceTime);

    const std::vector<Segment> m_segments;
    const VideoReader::Options m_options;
    std::size_t m_current = 0;

    // Of the current segment.
    std::unique_ptr<VideoReader> m_reader;
    Picture m_shown;
    std::optional<TimedPicture> m_following;
};

} // namespace vantry
