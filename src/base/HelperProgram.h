#pragma once

#include <filesystem>
#include <string>

namespace vantry {

/// Where a helper program of ours is: beside the running program, else where it was built.
std::filesystem::path helperProgram(const std::string& name, const std::filesystem::path& built);

} // namespace vantry
