#pragma once

#include "project/Project.h"

#include <QString>

#include <optional>

namespace vantry {

/// "{{x, y}, {width, height}}", with the shortest numbers that read back the same.
QString cropText(const CropRect& crop);

/// Nothing for a text of another form, and for a rectangle without an area.
std::optional<CropRect> parseCrop(const QString& text);

} // namespace vantry
