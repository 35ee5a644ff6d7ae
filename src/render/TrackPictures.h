#pragma once

#include "media/VideoReader.h"
#include "render/CompositionPlan.h"
#include "render/DamageLog.h"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace vantry {

/// The pictures of one role of a composition, for output frames in any order; one after the other is the cheapest. Keeps the file
/// open that it read last. One thread at a time.
class TrackPictures {
public:
    struct Options {
        /// So many decoded pictures are kept, at least the one that is shown and the one that follows it.
        std::size_t kept = 2;
        DamageLog* damage = nullptr; ///< Where damage is noted, if that is wanted; it outlives the object.
    };

    TrackPictures(std::vector<Segment> segments, Options options);

    /// What the output frame at `time` shows: the newest picture at or before it, as long as it is the newest the same one. In a
    /// gap, and where a clip is damaged, the last one of the frames before it stays; null before the first. Throws AppError when
    /// a clip cannot be opened.
    Picture at(MediaTime time)
    {
        return at(time, [] { return false; });
    }

    /// The same, but as soon as `isEnough` says so a picture that is not far before does. It is asked often.
    Picture at(MediaTime time, const std::function<bool()>& isEnough);

    const std::vector<Segment>& segments() const { return m_segments; }

private:
    Picture pictureIn(std::size_t segment, MediaTime time, const std::function<bool()>& isEnough);
    void open(std::size_t segment);
    void close();
    void reach(MediaTime sourceTime, const std::function<bool()>& isEnough);
    void seek(MediaTime sourceTime);
    void readOne();

    const std::vector<Segment> m_segments;
    const Options m_options;

    // Of the segment that was read last.
    std::optional<std::size_t> m_current;
    std::unique_ptr<VideoReader> m_reader;
    std::deque<TimedPicture> m_decoded; ///< Without a gap, in their order.
    MediaTime m_from{}; ///< The earliest source time for which they hold the picture.
    MediaTime m_sought{}; ///< Up to here, no keyframe is nearer than the one from which they were read.
    bool m_isAtEnd = false; ///< None follows them.
};

} // namespace vantry
