#pragma once

#include "render/DamageLog.h"

#include <QString>

#include <vector>

namespace vantry {

/// What is missing in a video that was exported, with its times and the clips' names. Empty when nothing is. However much it is,
/// the text stays one that can be read.
QString damageText(const std::vector<Damage>& damage);

} // namespace vantry
