#pragma once

#include "capture/Sample.h"
#include "media/PictureSize.h"
#include "media/TrackKind.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vantry {

/// The tracks of a clip. The screen is always among them.
struct ClipTracks {
    PictureSize screen;
    std::optional<PictureSize> camera{};
    bool audio = false; ///< The microphone.
    bool system = false;
};

/// How one track fared, in samples as they were handed over (pictures, stretches of sound).
struct TrackCounts {
    std::int64_t appended = 0;
    std::int64_t dropped = 0; ///< Not written: the encoder was busy, the sample was not later than the one before it, or writing
                              ///< had failed. Those before the clip's start do not count.
};

struct ClipOutcome {
    std::optional<double> duration; ///< Seconds; none when the file could not be completed.
    std::array<TrackCounts, trackKindCount> counts{}; ///< By `TrackKind`.
    std::string problem; ///< Why there is no duration, for a user.
};

/// Writes one clip: a QuickTime movie with the wanted tracks in `TrackKind`'s order, whose time 0 is `start`.
///
/// Screen: HEVC, its pictures at their own times. Camera: H.264. Both fitted into the track's size, with a keyframe less than a
/// second ahead of every picture. Sounds: AAC, placed by their stamps, silence where there is none. Every track that is in the file
/// ends where the clip ends: the last picture lasts until then. A camera or a microphone that delivered nothing has no track in the
/// file; a screen that delivered nothing is one black picture, so that the first video track is the screen in every clip. While
/// there is a camera or sound, a picture that stays for two seconds is repeated a few times at once, to have it in the file should
/// the program die. What is written reaches the disk every two seconds. The journal stays until the caller has put the clip into a
/// project.
///
/// `append` and `finish` are called on one thread and never wait. Each track encodes on a thread of its own, another one writes the
/// file.
class ClipWriter {
public:
    using WhenDone = std::function<void(const ClipOutcome&)>;
    using ProblemHandler = std::function<void(const std::string& text)>;

    /// `onProblem` is called on a thread of the writer when the clip had better end now, with why, for a user: the disk is almost
    /// full, or nothing more can be written. Once, and once more when the one becomes the other.
    ///
    /// Throws AppError when the disk is full, and else in the platform's own words, or "Could not start writing " and the file's
    /// name; no file is left then.
    ClipWriter(const std::filesystem::path& file, const ClipTracks& tracks, HostTime start, ProblemHandler onProblem = {});

    /// Waits for a `finish` under way. Without one the clip is given up, and its file left as a crash would leave it.
    ~ClipWriter();

    /// Drops the sample without a word when it lies before the start (of sound, that part), when there is no such track, when the
    /// track is not ready, or after a failure.
    void append(const PictureSample& sample, TrackKind kind);
    void append(SoundSample sample, TrackKind kind);

    /// Whether the track would take a sample now.
    bool isReady(TrackKind kind) const;

    /// Ends the clip at `end` (what was appended up to a second beyond it is cut off), completes the file and makes it durable,
    /// then calls `whenDone` on a thread of the writer, which must not destroy the writer itself. A second call has no duration.
    void finish(HostTime end, WhenDone whenDone);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
