#include "media/TrackInfo.h"

#include "media/Demuxer.h"

namespace vantry {

std::vector<TrackInfo> readTracks(const std::filesystem::path& movie)
{
    return Demuxer(movie).tracks();
}

} // namespace vantry
