#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string_view>

namespace vantry {

/// The JSON document in the bytes of a project file, within the limits of ProjectLimits.h. Takes time and memory in proportion to
/// the bytes, whatever they are. Throws an AppError that names the line.
nlohmann::json parseJson(std::string_view bytes);

} // namespace vantry
