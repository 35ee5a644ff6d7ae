#pragma once

#include <filesystem>

namespace vantry::bench {

enum class Sounds {
    None,
    Both, ///< The microphone's and other programs'.
};

/// The clip of the export's and the preview's benches, encoded as the recorder does: a 1920x1080 screen with typing and scrolling
/// and a 1280x720 camera with sensor noise. Written as fast as it goes.
void writeExportClip(const std::filesystem::path& file, Sounds sounds);

} // namespace vantry::bench
