#pragma once

#include <span>
#include <vector>

namespace vantry {

/// One channel at `sampleRate` as one channel at another rate, whole: its first sample is at the same time. Throws AppError.
std::vector<float> resampled(std::span<const float> samples, int rate);

} // namespace vantry
