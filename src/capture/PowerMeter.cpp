#include "capture/PowerMeter.h"

#include "media/Sound.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace vantry {

namespace {

constexpr float memory = sampleRate / 10.0F; ///< Samples after which a sound counts for a third.

/// The longest cycles of a sound server last a little less. What comes later than that has been silent meanwhile.
constexpr HostDuration longestCycle = std::chrono::milliseconds(200);

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
    m_latest = HostClock::now().time_since_epoch().count();
}

float PowerMeter::power() const
{
    const auto missing = std::max(HostClock::now() - latest() - longestCycle, HostDuration::zero());
    const float meanSquare = m_meanSquare * std::exp(-static_cast<float>(seconds(missing)) * sampleRate / memory);
    return meanSquare > 0 ? std::max(silence, 10 * std::log10(meanSquare)) : silence;
}

} // namespace vantry
