#include "model/ScreenAreas.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>

namespace vantry {

AreaKind areaKind(const std::optional<CropRect>& crop)
{
    constexpr double tolerance = 0.001;
    if (!crop)
        return AreaKind::FullScreen;
    const auto isNear = [](double value, double wanted) { return std::abs(value - wanted) <= tolerance; };
    const bool reachesEdges = isNear(crop->x, 0) && isNear(crop->width, 1) && isNear(crop->y + crop->height, 1);
    return reachesEdges ? AreaKind::WithoutMenuBar : AreaKind::Custom;
}

QString areaName(const std::optional<CropRect>& crop)
{
    switch (areaKind(crop)) {
    case AreaKind::FullScreen:
        return QCoreApplication::translate("Area", "Full screen");
    case AreaKind::WithoutMenuBar:
        return QCoreApplication::translate("Area", "Without menu bar");
    case AreaKind::Custom:
        break;
    }
    return QCoreApplication::translate("Area", "Custom area");
}

CropRect normalized(QPointF a, QPointF b, QSizeF size)
{
    const auto fraction = [](double value, double whole) { return std::clamp(value / whole, 0.0, 1.0); };
    const double left = fraction(std::min(a.x(), b.x()), size.width()), right = fraction(std::max(a.x(), b.x()), size.width());
    const double top = fraction(std::min(a.y(), b.y()), size.height()), bottom = fraction(std::max(a.y(), b.y()), size.height());
    return { left, top, right - left, bottom - top };
}

CropRect withoutMenuBar(double menuBar)
{
    return { 0, menuBar, 1, 1 - menuBar };
}

QVariant cropValue(const std::optional<CropRect>& crop)
{
    return crop ? QVariant(QRectF(crop->x, crop->y, crop->width, crop->height)) : QVariant();
}

std::optional<CropRect> cropOf(const QVariant& value)
{
    const QRectF rect = value.toRectF();
    if (!rect.isValid())
        return std::nullopt;
    return CropRect{ rect.x(), rect.y(), rect.width(), rect.height() };
}

} // namespace vantry
