#pragma once

#include "media/MediaTime.h"
#include "media/PictureSize.h"
#include "media/TrackKind.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace vantry {

/// A stretch of one track of a clip file and its place in the output.
struct Segment {
    std::filesystem::path file;
    TrackKind role = TrackKind::screen;
    int track = 0; ///< As the readers want it.
    MediaTime sourceStart{};
    MediaTime length{};
    MediaTime outputStart{};
    std::filesystem::file_time_type written{}; ///< Another file of the same name is another source.

    MediaTime outputEnd() const { return outputStart + length; }

    bool operator==(const Segment&) const = default;
};

/// What is played when: a project's clips laid end to end. A plain value without open files; whoever plays it reads exactly these
/// stretches. Within a stretch an output time shows the newest source picture at or before it; between stretches of a role there is
/// no picture and no sound.
struct CompositionPlan {
    std::vector<Segment> segments; ///< By clip, within a clip in the order of `TrackKind`.
    MediaTime duration{};
    PictureSize size;
    float systemVolume = 1;

    /// In the order of their output, which is free of overlaps.
    std::vector<Segment> segmentsOf(TrackKind role) const;

    bool hasSound() const;

    /// How many output frames begin within the duration.
    std::int64_t frameCount() const;

    /// The output frame that is shown at a time; beyond either end the first or the last.
    std::int64_t frameAt(MediaTime time) const;
};

} // namespace vantry
