#include "render/AxisMap.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace vantry {

namespace {

double catmullRom(double x)
{
    x = std::abs(x);
    if (x < 1)
        return 1 + x * x * (-2.5 + 1.5 * x);
    if (x < 2)
        return 2 + x * (-4 + x * (2.5 - 0.5 * x));
    return 0;
}

/// Rounds the weights so that they add up to exactly one unit: a flat picture stays flat.
void quantise(const std::vector<double>& weights, std::int16_t* out)
{
    double sum = 0;
    for (double weight : weights)
        sum += weight;
    int rest = AxisMap::unit;
    std::size_t greatest = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const long value = std::lround(weights[i] / sum * AxisMap::unit);
        out[i] = static_cast<std::int16_t>(value);
        rest -= static_cast<int>(value);
        if (weights[i] > weights[greatest])
            greatest = i;
    }
    out[greatest] = static_cast<std::int16_t>(out[greatest] + rest);
}

} // namespace

AxisMap::AxisMap(const Mapping& mapping, int first, int last, int sourceSize)
    : m_first(first)
    , m_last(std::max(first, last))
{
    const double ratio = mapping.sourceLength / mapping.destinationLength;
    const double stretch = std::max(ratio, 1.0);
    const double support = 2 * stretch;
    const int low = std::clamp(static_cast<int>(std::floor(mapping.sourceStart + 1e-9)), 0, sourceSize - 1);
    const int high =
        std::clamp(static_cast<int>(std::ceil(mapping.sourceStart + mapping.sourceLength - 1e-9)) - 1, low, sourceSize - 1);
    const auto centre = [&](int destination) {
        return mapping.sourceStart + (destination + 0.5 - mapping.destinationStart) * ratio - 0.5; // As a sample's number.
    };

    m_isCopy = std::abs(ratio - 1) < 1e-9 && std::abs(centre(first) - std::round(centre(first))) < 1e-6;
    const int reach = m_isCopy ? 1 : static_cast<int>(std::ceil(2 * support)); // Source samples under the curve.
    m_taps = std::min(reach, high - low + 1);
    m_paddedTaps = m_taps <= 4 ? 4 : (m_taps + 7) / 8 * 8;
    const auto count = static_cast<std::size_t>(m_last - m_first);
    m_starts.resize(count);
    m_weights.resize(count * static_cast<std::size_t>(m_paddedTaps));

    std::vector<double> weights(static_cast<std::size_t>(m_taps));
    for (int destination = m_first; destination < m_last; ++destination) {
        const double middle = centre(destination);
        const int from = m_isCopy ? static_cast<int>(std::lround(middle)) : static_cast<int>(std::floor(middle - support)) + 1;
        const int to = from + reach - 1;
        const int start = std::clamp(from, low, high + 1 - m_taps);
        std::fill(weights.begin(), weights.end(), 0.0);
        for (int source = from; source <= to; ++source)
            weights[static_cast<std::size_t>(std::clamp(std::clamp(source, low, high) - start, 0, m_taps - 1))] +=
                m_isCopy ? 1 : catmullRom((source - middle) / stretch);
        const auto index = static_cast<std::size_t>(destination - m_first);
        m_starts[index] = start;
        quantise(weights, m_weights.data() + index * static_cast<std::size_t>(m_paddedTaps));
    }
}

AxisMap::Range AxisMap::affected(int sourceFirst, int sourceLast) const
{
    // Starts never fall, so both ends can be searched for.
    const auto firstHit = std::upper_bound(m_starts.begin(), m_starts.end(), sourceFirst - m_taps);
    const auto pastLast = std::lower_bound(m_starts.begin(), m_starts.end(), sourceLast);
    return { m_first + static_cast<int>(firstHit - m_starts.begin()), m_first + static_cast<int>(pastLast - m_starts.begin()) };
}

} // namespace vantry
