#include "ExportMaterial.h"

namespace vantry::bench {

Project exportBenchProject(int repeats)
{
    Project project;
    for (int i = 0; i < repeats; ++i)
        project.clips.push_back(
            { .file = "clip-1.mov", .duration = exportClipSeconds, .keep = exportClipSeconds, .transcript = {} });
    project.screenCrop = { cropX / 1920.0, cropY / 1080.0, cropWidth / 1920.0, cropHeight / 1080.0 };
    project.layouts = { { 0, Layout::bubble, Corner::bottomRight }, { cameraFullFrom, Layout::camera, Corner::bottomRight },
        { cameraFullTo, Layout::bubble, Corner::bottomRight } };
    project.overlays.push_back({ .start = overlayFrom,
        .duration = overlayTo - overlayFrom,
        .kind = OverlayKind::text,
        .text = {},
        .html = {},
        .x = overlayX,
        .y = overlayY,
        .width = overlayWidth });
    return project;
}

OverlayImages exportBenchImages(const Project& project)
{
    constexpr int width = 768, height = 160;
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool isText = (x / 6 + y / 9) % 5 == 0 && y > 40 && y < 120;
            const auto alpha = static_cast<std::uint8_t>(isText ? 255 : 210);
            const auto grey = static_cast<std::uint8_t>(isText ? 250 : 30);
            bytes.insert(bytes.end(), { grey, grey, grey, alpha });
        }
    return { { project.overlays.front().id, Bitmap(width, height, std::move(bytes)) } };
}

} // namespace vantry::bench
