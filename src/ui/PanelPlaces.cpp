#include "ui/PanelPlaces.h"

#include <algorithm>

namespace vantry {

namespace {

constexpr QSize panelSize(760, 64);
constexpr QSize pillSize(284, 44);
constexpr int gapToEdge = 12;
constexpr int gapBetween = 6;

} // namespace

QSize hudSize(const QRect& area, bool isFolded)
{
    const QSize size = isFolded ? pillSize : panelSize;
    return { std::min(size.width(), area.width() - 2 * gapToEdge), size.height() };
}

QPoint defaultHudCorner(const QRect& area)
{
    return { (area.width() + hudSize(area, false).width()) / 2, gapToEdge };
}

QRect hudPlace(const QRect& area, QSize size, std::optional<QPoint> corner)
{
    const QPoint right = area.topLeft() + corner.value_or(defaultHudCorner(area));
    return within(area, QRect(right - QPoint(size.width(), 0), size));
}

QPoint hudCorner(const QRect& area, const QRect& place)
{
    return QPoint(place.x() + place.width(), place.y()) - area.topLeft();
}

QRect besidePlace(const QRect& area, const QRect& place, QSize size)
{
    const int below = place.y() + place.height() + gapBetween;
    const int above = place.y() - gapBetween - size.height();
    const bool isBelow = below + size.height() <= area.y() + area.height() || above < area.y();
    return within(area, QRect(QPoint(place.x(), isBelow ? below : above), size));
}

QRect within(const QRect& area, QRect rectangle)
{
    const QPoint room(area.width() - rectangle.width(), area.height() - rectangle.height());
    const auto moved = [](int place, int from, int room) { return std::max(from, std::min(place, from + room)); };
    rectangle.moveTo(moved(rectangle.x(), area.x(), room.x()), moved(rectangle.y(), area.y(), room.y()));
    return rectangle;
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
