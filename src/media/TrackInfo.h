#pragma once

#include "media/MediaTime.h"

#include <filesystem>
#include <string>
#include <vector>

namespace vantry {

enum class TrackMedia { Video, Audio };

/// What a movie file says of one of its tracks.
struct TrackInfo {
    int index = 0; ///< Its place in the file, as the readers want it.
    TrackMedia media = TrackMedia::Video;
    std::string codec; ///< The library's short name: "hevc", "h264", "aac".
    int width = 0; ///< Video: pixels.
    int height = 0;
    int channels = 0; ///< Audio.
    int sampleRate = 0;
    MediaTime start{}; ///< When its first picture or sample is presented.
    MediaTime duration{}; ///< From `start` to the end of its last picture or sample.
};

/// The movie's video and audio tracks in file order. Throws AppError when it cannot be opened or read.
std::vector<TrackInfo> readTracks(const std::filesystem::path& movie);

} // namespace vantry
