#pragma once

#include <string>

namespace vantry {

/// The text of a time, cut to whole seconds: "12:34", from an hour on "1:02:05". Below zero, or without a meaning, it is "0:00".
std::string timecode(double seconds);

} // namespace vantry
