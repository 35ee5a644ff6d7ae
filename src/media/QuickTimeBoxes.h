#pragma once

#include <filesystem>

namespace vantry {

/// Whether a QuickTime or MP4 file ends before its index does. Where only pictures and sound are missing behind it, the index tells
/// what was there. A fragmented file may end anywhere: it is made to be read up to wherever it got. A file that cannot be read is
/// not cut off.
bool isIndexCutOff(const std::filesystem::path& movie);

} // namespace vantry
