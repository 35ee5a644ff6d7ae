#include "ui/PanelPlaces.h"

namespace vantry {

QRect hudPlace(const QRect& available)
{
    constexpr int width = 760, height = 64, gap = 12;
    return { available.x() + available.width() / 2 - width / 2, available.y() + gap, width, height };
}

QRect bubblePlace(const QRect& screen, Layout layout, Corner corner, double size)
{
    constexpr double mirror = 1.4, marginFraction = 0.04;
    const double side = screen.height() * size * (layout == Layout::camera ? mirror : 1);
    const double margin = screen.height() * marginFraction;
    const double x = isLeft(corner) ? margin : screen.width() - margin - side;
    const double y = isTop(corner) ? margin : screen.height() - margin - side;
    return { screen.x() + qRound(x), screen.y() + qRound(y), qRound(side), qRound(side) };
}

} // namespace vantry
