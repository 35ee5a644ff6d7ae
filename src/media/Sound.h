#pragma once

#include "media/MediaTime.h"

#include <cstddef>
#include <vector>

namespace vantry {

/// Every sound inside the program has this rate; readers and sources convert to it.
inline constexpr int sampleRate = 48000;

/// A length of sound as a number of samples.
using SampleCount = std::chrono::duration<std::int64_t, std::ratio<1, sampleRate>>;

/// A stretch of sound: interleaved 32-bit floats, nominally from -1 to 1, at `sampleRate`.
struct Sound {
    int channels = 1;
    std::vector<float> samples;

    std::size_t frames() const { return samples.size() / static_cast<std::size_t>(channels); }
    SampleCount length() const { return SampleCount(static_cast<std::int64_t>(frames())); }
};

} // namespace vantry
