#pragma once

#include "media/AudioEncoder.h"
#include "media/PictureSize.h"
#include "media/VideoEncoder.h"

/// How a clip's tracks are encoded while recording. docs/encoder-settings.md tells what was tried and what it costs.
namespace vantry::clip {

VideoEncoderSettings screenSettings(PictureSize size);
VideoEncoderSettings cameraSettings(PictureSize size);

inline constexpr AudioEncoderSettings microphoneSettings{ .channels = 1, .bitRate = 160'000 };
inline constexpr AudioEncoderSettings systemSoundSettings{ .channels = 2, .bitRate = 192'000 };

} // namespace vantry::clip
