#pragma once

#include "media/Damage.h"
#include "media/Picture.h"
#include "media/TrackInfo.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace vantry {

struct TimedPicture {
    Picture picture;
    MediaTime time{}; ///< When it is first shown.
};

/// Reads the pictures of one track in the order they are shown, whatever its codec and pixel format. Damage is left out, with what
/// needs it: up to the next keyframe. One thread at a time.
class VideoReader {
public:
    /// Throws AppError when the movie cannot be opened or has no such video track.
    VideoReader(const std::filesystem::path& movie, int track, DamageSink onDamage = {});
    ~VideoReader();

    /// The next call of `next` gives the newest picture at or before `time`, or the first one there is.
    void seek(MediaTime time);

    /// The next call of `next` gives a keyframe at or before `time`, or the first picture there is.
    void seekKeyframe(MediaTime time);

    /// Nothing at the end of the track. Throws AppError.
    std::optional<TimedPicture> next();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
