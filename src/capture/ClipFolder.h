#pragma once

#include <filesystem>

namespace vantry {

/// Throws AppError when no clip can be begun in the folder, with why: it is not there, nothing can be written into it, or there is
/// no room. Of a folder that could not be made it says why not.
void checkClipFolder(const std::filesystem::path& folder);

/// The same for a folder of recordings that may have to be made first. Gives the innermost folder that is there: the folder itself
/// or one around it.
std::filesystem::path checkRecordingsFolder(const std::filesystem::path& folder);

} // namespace vantry
