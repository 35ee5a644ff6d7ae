#pragma once

#include "platform/Displays.h"

#include <QString>

#include <cstdint>
#include <optional>

namespace vantry {

/// What a recording of this screen with camera, microphone and other programs' sound writes at most.
double bytesPerSecond(const Display& display);

/// How long a recording fits into so many bytes: "About 3 h 20 min fit on the disk". Nothing where the disk does not tell, and
/// "More than a day fits on the disk" where it does not matter.
QString roomText(std::optional<std::uintmax_t> bytes, double bytesPerSecond);

} // namespace vantry
