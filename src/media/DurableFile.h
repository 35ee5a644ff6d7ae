#pragma once

#include <filesystem>

namespace vantry {

/// Waits until what was written to `file`, and its name in its folder, would outlive a power cut. Throws AppError.
void makeDurable(const std::filesystem::path& file);

} // namespace vantry
