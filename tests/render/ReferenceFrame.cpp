#include "ReferenceFrame.h"

#include "render/Renderer.h"

#include <cmath>

namespace vantry {

namespace {

constexpr int grid = 3; // Points to a side of a pixel.

bool contains(const Rect& rect, double x, double y)
{
    return x >= rect.x && y >= rect.y && x < rect.right() && y < rect.bottom();
}

bool containsRounded(const Rect& rect, double radius, double x, double y)
{
    if (!contains(rect, x, y))
        return false;
    const double dx = std::max({ rect.x + radius - x, x - (rect.right() - radius), 0.0 });
    const double dy = std::max({ rect.y + radius - y, y - (rect.bottom() - radius), 0.0 });
    return dx * dx + dy * dy <= radius * radius;
}

void over(ReferenceFrame::Colour& below, const ReferenceFrame::Colour& colour, double alpha)
{
    for (std::size_t i = 0; i < 3; ++i)
        below[i] += alpha * (colour[i] - below[i]);
}

} // namespace

ReferenceFrame::Colour ReferenceFrame::at(int x, int y) const
{
    Colour sum{};
    for (int j = 0; j < grid; ++j)
        for (int i = 0; i < grid; ++i) {
            const auto point = atPoint(x + (i + 0.5) / grid, y + (j + 0.5) / grid);
            for (std::size_t c = 0; c < 3; ++c)
                sum[c] += point[c] / (grid * grid);
        }
    return sum;
}

ReferenceFrame::Colour ReferenceFrame::atPoint(double x, double y) const
{
    const double up = size.height - y;
    Colour colour{ 0.06, 0.06, 0.08 };

    const auto crop = project.screenCrop.value_or(CropRect());
    const double cropWidth = crop.width * screenSize.width;
    const double cropHeight = crop.height * screenSize.height;
    const double fit = std::min(size.width / cropWidth, size.height / cropHeight);
    const double u = (x - size.width / 2) / fit + cropWidth / 2;
    const double v = (y - size.height / 2) / fit + cropHeight / 2;
    if (u >= 0 && v >= 0 && u < cropWidth && v < cropHeight)
        colour = screen(u + crop.x * screenSize.width, v + crop.y * screenSize.height);

    const auto placement = Renderer::cameraPlacement(time, project, size);
    const double ring = placement.radius > 2 ? 0.005 * size.height : 0;
    const auto& rect = placement.rect;
    const Rect outer{ rect.x - ring, rect.y - ring, rect.width + 2 * ring, rect.height + 2 * ring };
    if (placement.opacity > 0.01) {
        if (containsRounded(rect, placement.radius, x, up)) {
            const double fill = std::max(rect.width / cameraSize.width, rect.height / cameraSize.height);
            over(colour, camera((x - rect.midX()) / fill + cameraSize.width / 2, (rect.midY() - up) / fill + cameraSize.height / 2),
                placement.opacity);
        } else if (ring > 0 && containsRounded(outer, placement.radius + ring, x, up)) {
            over(colour, { 1, 1, 1 }, placement.opacity);
        }
    }

    for (const auto& shown : project.overlays) {
        const auto placed = Renderer::overlayPlacement(time, shown, overlaySize, size);
        if (!placed || !contains(placed->rect, x, up))
            continue;
        const double scale = placed->rect.width / overlaySize.width;
        const auto point = overlay((x - placed->rect.x) / scale, (placed->rect.bottom() - up) / scale);
        for (std::size_t i = 0; i < 3; ++i)
            colour[i] = point[i] * placed->opacity + colour[i] * (1 - point[3] * placed->opacity);
    }
    return colour;
}

} // namespace vantry
