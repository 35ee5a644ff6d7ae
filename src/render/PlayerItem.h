#pragma once

#include "render/CompositionPlan.h"
#include "render/RenderInstruction.h"

#include <filesystem>
#include <memory>

namespace vantry {

/// What a player plays: a composition with its render instruction. Immutable; any thread.
struct PlayerItem {
    CompositionPlan plan;
    std::shared_ptr<const RenderInstruction> instruction;
};

/// The size of everything that a player shows.
inline constexpr PictureSize previewSize{ 1920, 1080 };

/// The project whose clips lie in `folder`. Reads the clips' headers, so off the main thread. Throws AppError.
std::shared_ptr<const PlayerItem> makePlayerItem(Project project, const std::filesystem::path& folder, OverlayImages images);

} // namespace vantry
