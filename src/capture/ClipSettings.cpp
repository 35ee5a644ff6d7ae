#include "capture/ClipSettings.h"

#include <algorithm>

namespace vantry::clip {

namespace {

/// Out of reach: `PictureTrack` says where keyframes go.
constexpr int onlyForcedKeyframes = 600;

} // namespace

VideoEncoderSettings screenSettings(PictureSize size)
{
    return {
        .codec = VideoCodec::Hevc,
        .width = size.width,
        .height = size.height,
        .bitRate = std::max(size.width * size.height * 4, 8'000'000),
        .gop = onlyForcedKeyframes,
        .preset = "ultrafast",
        .parameters = "rc-lookahead=0:scenecut=0:aq-mode=0:weightp=0:min-cu-size=32:rd=1:no-deblock=1:frame-threads=3",
    };
}

VideoEncoderSettings cameraSettings(PictureSize size)
{
    return {
        .codec = VideoCodec::H264,
        .width = size.width,
        .height = size.height,
        .bitRate = 10'000'000,
        .gop = onlyForcedKeyframes,
        .threads = 1,
        .preset = "ultrafast",
        .parameters = "rc-lookahead=0:sync-lookahead=0:mbtree=0:scenecut=0",
    };
}

} // namespace vantry::clip
