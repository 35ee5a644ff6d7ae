#pragma once

#include "base/HostTime.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace vantry {

/// Looks whether the disk that a clip is written to still has room for it, so that a clip ends while it can be completed: a movie's
/// index is written last, and without it nothing of the movie can be played. A disk that does not tell has room. One thread at a
/// time.
class DiskRoom {
public:
    explicit DiskRoom(std::filesystem::path folder);

    /// Throws AppError when there is not enough to begin a clip.
    void checkForClip() const;

    /// How much clips may take up from now on. Nothing where the disk does not tell.
    std::optional<std::uintmax_t> bytesForClips() const;

    /// No more is left than completing the clip may take. Looks once a second at most.
    bool isRunningOut();

    /// For the user.
    static constexpr auto runsOut = "The disk is almost full. What was recorded until now is kept; free some space to go on.";

private:
    const std::filesystem::path m_folder;
    HostTime m_nextLook;
};

} // namespace vantry
