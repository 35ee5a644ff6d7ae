#pragma once

#include "project/Project.h"

#include <string_view>

namespace vantry {

/// The project in the bytes of a project file. Strict: what is missing, of another type or not among the known names is an error,
/// and there are no defaults. Unknown keys are ignored; of a key that stands twice in one object the last one counts. Safe for any
/// bytes; throws an AppError that names the place, as "clips[2].keep: expected a number".
Project decodeProject(std::string_view bytes);

} // namespace vantry
