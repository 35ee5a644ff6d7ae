#include "model/LayoutPlacement.h"

#include "render/Renderer.h"

namespace vantry {

namespace {

Size sizeOf(const QSizeF& size)
{
    return { size.width(), size.height() };
}

Placement placementOf(LayoutKind::Kind layout, CornerKind::Kind corner, double bubble, const QSizeF& frame)
{
    const LayoutEvent event{ .time = 0, .layout = static_cast<Layout>(layout), .corner = static_cast<Corner>(corner) };
    return Renderer::cameraPlacement(0, { .event = event, .previous = {} }, bubble, sizeOf(frame));
}

} // namespace

QRectF LayoutPlacement::cameraRect() const
{
    const Rect rect = placementOf(m_layout, m_corner, m_bubble, m_frame).rect;
    return { rect.x, m_frame.height() - rect.bottom(), rect.width, rect.height };
}

double LayoutPlacement::cameraRadius() const
{
    return placementOf(m_layout, m_corner, m_bubble, m_frame).radius;
}

double LayoutPlacement::cameraOpacity() const
{
    return placementOf(m_layout, m_corner, m_bubble, m_frame).opacity;
}

double LayoutPlacement::ringWidth() const
{
    return cameraRadius() >= Renderer::ringThreshold ? Renderer::ringWidth * m_frame.height() : 0;
}

QRectF LayoutPlacement::screenRect() const
{
    if (m_screen.isEmpty())
        return {};
    const Rect rect = Renderer::fitted(sizeOf(m_screen), sizeOf(m_frame));
    return { rect.x, rect.y, rect.width, rect.height };
}

} // namespace vantry
