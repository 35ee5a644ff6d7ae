#include "capture/PowerMeter.h"

#include "media/Sound.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace vantry {

namespace {

constexpr float memory = sampleRate / 10.0F; ///< Samples after which a sound counts for a third.

} // namespace

void PowerMeter::add(std::span<const float> samples)
{
    if (samples.empty())
        return;
    const auto count = static_cast<float>(samples.size());
    const float sum = std::transform_reduce(samples.begin(), samples.end(), 0.0F, std::plus<>(),
        [](float sample) { return std::isfinite(sample) ? sample * sample : 0; });
    const float kept = std::exp(-count / memory);
    m_meanSquare = kept * m_meanSquare + (1 - kept) * sum / count;
}

float PowerMeter::power() const
{
    const float meanSquare = m_meanSquare;
    return meanSquare > 0 ? std::max(silence, 10 * std::log10(meanSquare)) : silence;
}

} // namespace vantry
