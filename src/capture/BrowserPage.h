#pragma once

#include "base/AppError.h"
#include "platform/Displays.h"
#include "project/Project.h"

#include <stop_token>

namespace vantry {

/// The user has not allowed yet to look at what is in other windows.
class LookingNotAllowed : public AppError {
public:
    LookingNotAllowed();
};

/// The page of the frontmost browser window on a display, as a part of that display. Takes up to some seconds, so it is called on a
/// thread that nobody waits for. Throws AppError when there is none or it cannot be told, and when it is asked to stop.
CropRect browserPageCrop(const Display& display, const std::stop_token& stop);

} // namespace vantry
