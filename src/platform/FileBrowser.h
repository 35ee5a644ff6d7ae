#pragma once

#include <filesystem>

namespace vantry {

/// Shows a file, selected, in the desktop's file browser. Nothing happens where there is none. Does not wait.
void revealInFileBrowser(const std::filesystem::path& file);

} // namespace vantry
