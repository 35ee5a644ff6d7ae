#pragma once

#include "project/Project.h"

#include <filesystem>

namespace vantry {

/// Puts what the project says for YouTube into a text file beside its video: title, description, tags. Nothing is written without a
/// title and a description. A video is complete without the file, so that an error is not reported.
void writeDetailsFile(const YouTubeInfo& info, const std::filesystem::path& video);

} // namespace vantry
