#include "ReferenceFrame.h"

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

ReferenceFrame::ReferenceFrame(const Project& project, const Sources& sources, double time, Size size)
    : m_project(project)
    , m_sources(sources)
    , m_time(time)
    , m_size(size)
{
}

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
    const double up = m_size.height - y;
    Colour colour{ 0.06, 0.06, 0.08 };

    const auto crop = m_project.screenCrop.value_or(CropRect());
    const double cropWidth = crop.width * m_sources.screenSize.width;
    const double cropHeight = crop.height * m_sources.screenSize.height;
    const double fit = std::min(m_size.width / cropWidth, m_size.height / cropHeight);
    const double u = (x - m_size.width / 2) / fit + cropWidth / 2;
    const double v = (y - m_size.height / 2) / fit + cropHeight / 2;
    if (u >= 0 && v >= 0 && u < cropWidth && v < cropHeight)
        colour = m_sources.screen(u + crop.x * m_sources.screenSize.width, v + crop.y * m_sources.screenSize.height);

    const auto camera = Renderer::cameraPlacement(m_time, m_project, m_size);
    const double ring = camera.radius > 2 ? 0.005 * m_size.height : 0;
    const auto& rect = camera.rect;
    const Rect outer{ rect.x - ring, rect.y - ring, rect.width + 2 * ring, rect.height + 2 * ring };
    if (camera.opacity > 0.01) {
        if (containsRounded(rect, camera.radius, x, up)) {
            const double fill = std::max(rect.width / m_sources.cameraSize.width, rect.height / m_sources.cameraSize.height);
            over(colour,
                m_sources.camera((x - rect.midX()) / fill + m_sources.cameraSize.width / 2,
                    (rect.midY() - up) / fill + m_sources.cameraSize.height / 2),
                camera.opacity);
        } else if (ring > 0 && containsRounded(outer, camera.radius + ring, x, up)) {
            over(colour, { 1, 1, 1 }, camera.opacity);
        }
    }

    for (const auto& overlay : m_project.overlays) {
        const auto placed = Renderer::overlayPlacement(m_time, overlay, m_sources.overlaySize, m_size);
        if (!placed || !contains(placed->rect, x, up))
            continue;
        const double scale = placed->rect.width / m_sources.overlaySize.width;
        const auto point = m_sources.overlay((x - placed->rect.x) / scale, (placed->rect.bottom() - up) / scale);
        for (std::size_t i = 0; i < 3; ++i)
            colour[i] = point[i] * placed->opacity + colour[i] * (1 - point[3] * placed->opacity);
    }
    return colour;
}

} // namespace vantry
