#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string_view>

namespace vantry {

/// The JSON document in bytes from outside, within the limits of a project file (ProjectLimits.h). Takes time and memory in
/// proportion to the bytes, whatever they are. Throws an AppError that names the line.
nlohmann::json parseJson(std::string_view bytes);

} // namespace vantry
