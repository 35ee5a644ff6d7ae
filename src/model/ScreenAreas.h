#pragma once

#include "project/Project.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <QVariant>

#include <optional>

namespace vantry {

enum class AreaKind { FullScreen, WithoutMenuBar, Custom };

/// Absent is all of the screen.
AreaKind areaKind(const std::optional<CropRect>& crop);

/// What a part of the screen is called.
QString areaName(const std::optional<CropRect>& crop);

/// The part of a view of this size that two points span, in whatever order. What lies outside of the view is left out.
CropRect normalized(QPointF a, QPointF b, QSizeF size);

/// The screen below a panel at its top, of this fraction of its height.
CropRect withoutMenuBar(double menuBar);

/// As views hold it: a rectangle of fractions, or nothing for the whole screen.
QVariant cropValue(const std::optional<CropRect>& crop);

/// Nothing for what is no rectangle, and for one without an area.
std::optional<CropRect> cropOf(const QVariant& value);

} // namespace vantry
