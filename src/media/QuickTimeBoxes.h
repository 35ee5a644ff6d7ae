#pragma once

#include <filesystem>

namespace vantry {

/// Whether a QuickTime or MP4 file ends before its outermost boxes do. A fragmented one may: it is made to be read up to wherever
/// it got. A file that cannot be read is not cut off.
bool isCutOff(const std::filesystem::path& movie);

} // namespace vantry
