#include "project/Timecode.h"

#include <cstdint>

namespace vantry {

namespace {

/// Zero for what no whole number holds.
std::int64_t wholeSeconds(double seconds)
{
    constexpr double beyondLargest = 0x1p63;
    return seconds > 0 && seconds < beyondLargest ? static_cast<std::int64_t>(seconds) : 0;
}

std::string twoDigits(std::int64_t number)
{
    return std::string(number < 10 ? 1 : 0, '0') + std::to_string(number);
}

} // namespace

std::string timecode(double seconds)
{
    const auto whole = wholeSeconds(seconds);
    const auto hours = whole / 3600;
    const auto minutes = whole / 60 % 60;
    const auto text = ':' + twoDigits(whole % 60);
    if (hours == 0)
        return std::to_string(minutes) + text;
    return std::to_string(hours) + ':' + twoDigits(minutes) + text;
}

} // namespace vantry
