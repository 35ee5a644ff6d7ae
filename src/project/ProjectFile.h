#pragma once

#include "project/ProjectDecoder.h"
#include "project/ProjectEncoder.h"

#include <filesystem>
#include <string_view>

namespace vantry {

/// A project's folder holds the project in this file, and beside it a movie for each clip.
inline constexpr std::string_view projectFileName = "project.json";

/// Reads the project of a folder. Throws what `decodeProject` throws, or the system's words when the file cannot be read.
Project loadProject(const std::filesystem::path& folder);

/// Replaces the project file of a folder, atomically and durably: whatever happens, the old or the new file is there and whole.
/// Throws when the project cannot be encoded or written; the old file then stays.
void saveProject(const Project&, const std::filesystem::path& folder);

} // namespace vantry
