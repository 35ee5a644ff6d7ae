#pragma once

#include "media/Picture.h"
#include "project/Project.h"
#include "render/CompositionPlan.h"
#include "render/Exporter.h"

#include <filesystem>
#include <optional>

/// A project's clips as one video. Nothing here keeps state; any thread may call it, and each call works on the project as it is
/// given.
namespace vantry::Video {

/// The plan of the project whose clips lie in `folder`, for an output of `size`. Reads every clip file's headers. Throws AppError
/// when one cannot be read, and "Nothing recorded yet" when none gives anything.
CompositionPlan build(const Project& project, const std::filesystem::path& folder, PictureSize size);

/// The recorded screen as it was at a project time, uncropped, in the size it was recorded in. Beyond the end it is the last
/// clip's. Nothing when there is no such picture, whatever the reason.
std::optional<Picture> screenFrame(const Project& project, const std::filesystem::path& folder, double time);

} // namespace vantry::Video
