#pragma once

#include <cstdint>

namespace vantry {

/// A weight from 0 to just below 1, with fifteen bits behind the point.
using Weight = std::int16_t;
inline constexpr int wholeWeight = 1 << 15;

constexpr Weight toWeight(double value)
{
    return static_cast<Weight>(value <= 0 ? 0 : value >= 1 ? wholeWeight - 1 : static_cast<int>(value * wholeWeight));
}

/// On the way from `a` to `b`, which differ by less than 2^15. Vectors of sixteen bits do it as it stands.
constexpr std::int16_t mixed(std::int16_t a, std::int16_t b, Weight weight)
{
    const auto difference = static_cast<std::int16_t>(b - a);
    return static_cast<std::int16_t>(a + ((difference * weight >> 16) << 1));
}

/// Between two neighbours: this part of the way from sample `at` to the next one.
struct Between {
    int at = 0;
    Weight weight = 0;
};

} // namespace vantry
