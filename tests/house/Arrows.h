#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vantry {

/// Reads every #include below `sources` (one folder for each room) and gives a line `file: what is wrong` for each one that the
/// design does not allow: an arrow between two rooms that is not in its list, a library in a room that must do without it, or an
/// include of our own that is not written as "room/File.h".
std::vector<std::string> wrongArrows(const std::filesystem::path& sources);

} // namespace vantry
