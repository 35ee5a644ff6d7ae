#pragma once

#include "media/Picture.h"
#include "media/PictureSize.h"
#include "media/Sound.h"

#include <algorithm>
#include <vector>

namespace vantry::test {

inline constexpr int dark = 40;
inline constexpr int bright = 220;

/// A picture of one grey.
inline Picture grey(int luma, PictureSize size = { 320, 180 })
{
    PictureBuffer buffer(size.width, size.height);
    buffer.fill(static_cast<std::uint8_t>(luma), 128, 128);
    return std::move(buffer).share();
}

inline bool samePixels(const Picture& a, const Picture& b)
{
    for (int index : { PlaneY, PlaneCb, PlaneCr })
        for (int y = 0; y < a.plane(index).height; ++y)
            if (!std::equal(a.plane(index).row(y), a.plane(index).row(y) + a.plane(index).width, b.plane(index).row(y)))
                return false;
    return true;
}

/// Silence, with eight samples close to full scale from sample `click` on, if that is in it.
inline Sound soundWithClick(int channels, int frames, int click)
{
    Sound sound{ .channels = channels, .samples = std::vector<float>(static_cast<std::size_t>(channels * frames)) };
    for (int i = click * channels; i < std::min(click + 8, frames) * channels; ++i)
        sound.samples[static_cast<std::size_t>(i)] = 0.9f;
    return sound;
}

} // namespace vantry::test
