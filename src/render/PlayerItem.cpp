#include "render/PlayerItem.h"

#include "render/Video.h"

#include <utility>

namespace vantry {

std::shared_ptr<const PlayerItem> makePlayerItem(Project project, const std::filesystem::path& folder, OverlayImages images)
{
    auto plan = Video::build(project, folder, previewSize);
    const auto duration = plan.duration;
    return std::make_shared<const PlayerItem>(PlayerItem{
        .plan = std::move(plan),
        .instruction = std::make_shared<const RenderInstruction>(
            RenderInstruction{ .duration = duration, .project = std::move(project), .images = std::move(images) }),
    });
}

} // namespace vantry
