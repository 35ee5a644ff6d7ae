#include "render/Renderer.h"

#include <algorithm>
#include <cmath>

namespace vantry::Renderer {

namespace {

constexpr double fadeInRate = 4; // 0.25 s
constexpr double fadeOutTime = 0.3;
constexpr double lowerThirdSlide = 0.03;

double mix(double from, double to, double amount)
{
    return from + amount * (to - from);
}

double smoothstep(double progress)
{
    return progress * progress * (3 - 2 * progress);
}

double easeOutBack(double progress)
{
    const double p = progress - 1;
    return 1 + 2.70158 * p * p * p + 1.70158 * p * p;
}

Placement target(const LayoutEvent& event, double bubbleSize, Size size)
{
    if (event.layout == Layout::camera)
        return { .rect = { 0, 0, size.width, size.height }, .radius = 0, .opacity = 1 };
    const double diameter = bubbleSize * size.height;
    const double margin = bubbleMargin * size.height;
    return {
        .rect = { isLeft(event.corner) ? margin : size.width - margin - diameter,
            isTop(event.corner) ? size.height - margin - diameter : margin, diameter, diameter },
        .radius = diameter / 2,
        .opacity = event.layout == Layout::bubble ? 1.0 : 0.0,
    };
}

Placement mixed(const Placement& from, const Placement& to, double amount)
{
    return {
        .rect = { mix(from.rect.x, to.rect.x, amount), mix(from.rect.y, to.rect.y, amount),
            mix(from.rect.width, to.rect.width, amount), mix(from.rect.height, to.rect.height, amount) },
        .radius = mix(from.radius, to.radius, amount),
        .opacity = mix(from.opacity, to.opacity, amount),
    };
}

} // namespace

Placement cameraPlacement(double time, const ProjectIndex::LayoutInForce& layout, double bubbleSize, Size size)
{
    const auto end = target(layout.event, bubbleSize, size);
    const double progress = (time - layout.event.time) / transition;
    if (!layout.previous || progress >= 1)
        return end;
    // The event is in force a hair before its time.
    return mixed(target(*layout.previous, bubbleSize, size), end, smoothstep(std::max(progress, 0.0)));
}

Placement cameraPlacement(double time, const Project& project, Size size)
{
    return cameraPlacement(time, ProjectIndex(project).layoutAt(time), project.bubbleSize, size);
}

std::optional<OverlayPlacement> overlayPlacement(double time, const Overlay& overlay, Size image, Size size)
{
    const double end = overlay.start + overlay.duration;
    if (time < overlay.start || time >= end || image.width <= 0 || image.height <= 0)
        return std::nullopt;
    const double fadeIn = std::min((time - overlay.start) * fadeInRate, 1.0);
    const double fadeOut = std::min((end - time) / fadeOutTime, 1.0);
    double scale = size.width * overlay.width / image.width;
    double offset = 0;
    if (overlay.kind == OverlayKind::bubble)
        scale *= 0.8 + 0.2 * easeOutBack(fadeIn);
    else if (overlay.kind == OverlayKind::lowerThird)
        offset = -lowerThirdSlide * size.height * (1 - fadeIn);
    const double width = scale * image.width;
    const double height = scale * image.height;
    return OverlayPlacement{
        .rect = { size.width * overlay.x - width / 2, offset + size.height * (1 - overlay.y) - height / 2, width, height },
        .opacity = std::clamp(std::min(fadeIn, fadeOut), 0.0, 1.0),
    };
}

Rect cropped(Size screen, const std::optional<CropRect>& crop)
{
    const auto part = crop.value_or(CropRect());
    const double left = std::clamp(part.x, 0.0, 1.0);
    const double top = std::clamp(part.y, 0.0, 1.0);
    const double right = std::clamp(part.x + part.width, left, 1.0);
    const double bottom = std::clamp(part.y + part.height, top, 1.0);
    return { left * screen.width, top * screen.height, (right - left) * screen.width, (bottom - top) * screen.height };
}

Rect fitted(Size content, Size size)
{
    const double scale = std::min(size.width / content.width, size.height / content.height);
    const double width = scale * content.width;
    const double height = scale * content.height;
    return { (size.width - width) / 2, (size.height - height) / 2, width, height };
}

Rect filling(Size image, Size rect)
{
    const double scale = std::max(rect.width / image.width, rect.height / image.height);
    const double width = rect.width / scale;
    const double height = rect.height / scale;
    return { (image.width - width) / 2, (image.height - height) / 2, width, height };
}

} // namespace vantry::Renderer
