#pragma once

#include "project/Project.h"

#include <string>

namespace vantry {

/// The bytes of a project file: JSON with sorted keys, indented by two spaces, numbers as short as they can be and still read back
/// to the same value. Throws an AppError for what JSON cannot hold (a number that is not finite, a text that is not UTF-8) and for
/// what `decodeProject` would refuse.
std::string encodeProject(const Project&);

} // namespace vantry
