#pragma once

#include <filesystem>

namespace vantry {

/// Waits until what was written to `file`, and its name in its folder, would outlive a power cut. Throws AppError.
void makeDurable(const std::filesystem::path& file);

/// The same for the names in a folder. Some file systems cannot do that; the files themselves are safe then all the same.
void makeNamesDurable(const std::filesystem::path& folder);

} // namespace vantry
