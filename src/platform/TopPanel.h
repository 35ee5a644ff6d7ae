#pragma once

#include "platform/Displays.h"

namespace vantry {

/// How many pixels at a display's top the desktop keeps free for its panel, so that windows begin below. 0 where there is none.
/// Throws AppError when there is no server.
int topPanelHeight(const Display& display);

} // namespace vantry
