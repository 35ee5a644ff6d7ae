#pragma once

#include "media/VideoEncoder.h"
#include "project/Project.h"
#include "render/CompositionPlan.h"
#include "render/DamageLog.h"
#include "render/RenderInstruction.h"

#include <array>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <vector>

namespace vantry {

struct ExportOptions {
    Project project;
    std::filesystem::path folder; ///< Where the project's clips lie.
    std::filesystem::path destination; ///< Becomes the new video in one step; until then it stays what it was.
    int height = 1080; ///< Of the video, in pixels. Even.
    OverlayImages images{};
    std::function<void(double fraction)> onProgress{}; ///< Called on the exporting thread, a few times a second.
    std::stop_token cancel{};
};

/// The heights that videos are made in, in pixels.
inline constexpr std::array exportHeights{ 720, 1080, 1440, 2160 };
inline constexpr int defaultExportHeight = 1080;

enum class ExportOutcome { Finished, Cancelled };

struct ExportResult {
    ExportOutcome outcome = ExportOutcome::Finished;
    std::vector<Damage> damage; ///< What of the clips could not be read and was left out.
};

/// The size of an export: 16:9.
PictureSize exportSize(int height);

/// How exports are encoded.
VideoEncoderSettings exportSettings(PictureSize size);

namespace Video {

/// Writes the project as an MP4 that video sites take as it is: H.264 High at a constant 30 frames a second, AAC in stereo when the
/// project has any sound. Returns when all is done; works on threads of its own besides the calling one. Throws AppError, naming a
/// clip that cannot be opened; the destination is untouched then, and when it was cancelled.
ExportResult exportProject(const ExportOptions& options);

} // namespace Video

} // namespace vantry
