#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace vantry {

// A small file that is read and replaced as a whole. Errors are AppErrors: the file's name and the system's words.

/// All bytes of a file; an error when there are more than `limit`.
std::string readFile(const std::filesystem::path&, std::size_t limit);

/// Puts `bytes` in the place of a file, or makes it. Whatever happens on the way, power failure included, there is the old file or
/// the new one, whole; once this returns, it is the new one. The file keeps its permissions.
void replaceFile(const std::filesystem::path&, std::string_view bytes);

/// Removes what programs left beside a file that were killed while they replaced it.
void removeLeftovers(const std::filesystem::path&);

} // namespace vantry
