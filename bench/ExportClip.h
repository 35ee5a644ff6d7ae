#pragma once

#include <filesystem>

namespace vantry::bench {

/// The export benches' clip, encoded as the recorder does: a 1920x1080 screen with typing and scrolling and a 1280x720 camera with
/// sensor noise. Written as fast as it goes.
void writeExportClip(const std::filesystem::path& file);

} // namespace vantry::bench
