#include "render/RoundedShape.h"

#include <algorithm>
#include <cmath>

namespace vantry {

RoundedShape::RoundedShape(const Rect& rect, double radius)
    : m_middleX(rect.midX())
    , m_middleY(rect.midY())
    , m_radius(std::clamp(radius, 0.0, std::min(rect.width, rect.height) / 2))
{
    m_halfWidth = rect.width / 2 - m_radius;
    m_halfHeight = rect.height / 2 - m_radius;
}

double RoundedShape::coverage(int x, int y) const
{
    const double dx = std::abs(x + 0.5 - m_middleX) - m_halfWidth;
    const double dy = std::abs(y + 0.5 - m_middleY) - m_halfHeight;
    const double outside = dx > 0 && dy > 0 ? std::sqrt(dx * dx + dy * dy) : std::max(dx, dy);
    return std::clamp(0.5 - (outside - m_radius), 0.0, 1.0);
}

RoundedShape::Span RoundedShape::span(int y, double distance) const
{
    const double dy = std::abs(y + 0.5 - m_middleY) - m_halfHeight;
    const double reach = m_radius + distance;
    if (dy > reach)
        return {};
    // Beside the corners the edge is straight; beyond their centres it follows the circle.
    const double half = m_halfWidth + (dy > 0 ? std::sqrt(reach * reach - dy * dy) : reach);
    constexpr double limit = 1 << 20; // Far outside of every frame, and safe to convert.
    const int first = static_cast<int>(std::ceil(std::clamp(m_middleX - half - 0.5, -limit, limit)));
    const int last = static_cast<int>(std::floor(std::clamp(m_middleX + half - 0.5, -limit, limit))) + 1;
    return last > first ? Span{ first, last } : Span{};
}

} // namespace vantry
