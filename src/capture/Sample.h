#pragma once

#include "base/HostTime.h"
#include "media/Picture.h"
#include "media/Sound.h"

namespace vantry {

/// What the sources hand over: a picture and when it was taken.
struct PictureSample {
    Picture picture;
    HostTime time;
};

/// A stretch of sound and when its first sample was taken.
struct SoundSample {
    Sound sound;
    HostTime time;
};

} // namespace vantry
