#include "model/AreaSelection.h"

#include "model/ChangeTo.h"
#include "model/ScreenAreas.h"

#include <algorithm>
#include <cmath>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

/// Without what division and multiplication leave behind of a whole number.
int wholePixels(double fraction, int size)
{
    constexpr double rounding = 1e-6;
    return static_cast<int>(fraction * size + rounding);
}

} // namespace

QVariant AreaSelection::crop() const
{
    return cropValue(m_crop);
}

void AreaSelection::setCrop(const QVariant& value)
{
    if (changeTo(m_crop, cropOf(value)))
        Q_EMIT changed();
}

void AreaSelection::setPixelSize(QSize size)
{
    if (changeTo(m_pixelSize, size))
        Q_EMIT changed();
}

void AreaSelection::setLocked(bool locked)
{
    if (!changeTo(m_isLocked, locked))
        return;
    if (locked && m_crop)
        editPixels(pixels().widened(area(), { .right = true, .bottom = true }));
    Q_EMIT changed();
}

QRectF AreaSelection::shown() const
{
    const CropRect shown = m_dragged ? *m_dragged : m_crop.value_or(CropRect());
    return { shown.x, shown.y, shown.width, shown.height };
}

bool AreaSelection::isBelowMenuBar() const
{
    return !m_dragged && areaKind(m_crop) == AreaKind::WithoutMenuBar;
}

QString AreaSelection::name() const
{
    return areaName(m_dragged ? m_dragged : m_crop);
}

int AreaSelection::pixelWidth() const
{
    return wholePixels(shown().width(), m_pixelSize.width());
}

int AreaSelection::pixelHeight() const
{
    return wholePixels(shown().height(), m_pixelSize.height());
}

QString AreaSelection::readout() const
{
    return u"%1 × %2 px"_s.arg(pixelWidth()).arg(pixelHeight());
}

PixelRect AreaSelection::area() const
{
    return pixels().snapped(m_crop.value_or(CropRect()));
}

void AreaSelection::draw(QPointF from, QPointF to, QSizeF view)
{
    if (view.isEmpty())
        return;
    CropRect drawn = normalized(from, to, view);
    if (m_isLocked && drawn.width > 0 && drawn.height > 0) {
        const AreaEdges edges{
            .left = to.x() < from.x(), .top = to.y() < from.y(), .right = to.x() >= from.x(), .bottom = to.y() >= from.y()
        };
        drawn = pixels().fractions(pixels().widened(pixels().snapped(drawn), edges));
    }
    setDragged(drawn);
}

void AreaSelection::drag(int edges, QPointF by, QSizeF view)
{
    if (view.isEmpty())
        return;
    const int dx = static_cast<int>(std::lround(by.x() / view.width() * m_pixelSize.width()));
    const int dy = static_cast<int>(std::lround(by.y() / view.height() * m_pixelSize.height()));
    const AreaEdges moving{ (edges & LeftEdge) != 0, (edges & TopEdge) != 0, (edges & RightEdge) != 0, (edges & BottomEdge) != 0 };
    const PixelRect dragged = edges == NoEdge ? pixels().moved(area(), dx, dy) : pixels().resized(area(), moving, dx, dy, shape());
    setDragged(pixels().fractions(dragged));
}

void AreaSelection::endDrag()
{
    constexpr double meant = 0.05;
    if (!m_dragged)
        return;
    const CropRect dragged = *m_dragged;
    m_dragged.reset();
    if (dragged.width > meant && dragged.height > meant)
        editPixels(pixels().snapped(dragged));
    Q_EMIT changed();
}

void AreaSelection::cancelDrag()
{
    setDragged(std::nullopt);
}

void AreaSelection::move(int dx, int dy)
{
    if (m_crop)
        editPixels(pixels().moved(area(), dx, dy));
}

void AreaSelection::resize(int dx, int dy)
{
    const AreaEdges moving{ .right = dx != 0, .bottom = dy != 0 };
    editPixels(pixels().resized(area(), moving, dx, dy, shape()));
}

void AreaSelection::setPixelWidth(int width)
{
    if (m_isLocked)
        width = std::min({ width, pixels().width(), AreaPixels::widthOf(pixels().height()) });
    editPixels(pixels().sized(area(), width, m_isLocked ? AreaPixels::heightOf(width) : area().height));
}

void AreaSelection::setPixelHeight(int height)
{
    if (m_isLocked)
        height = std::min({ height, pixels().height(), AreaPixels::heightOf(pixels().width()) });
    editPixels(pixels().sized(area(), m_isLocked ? AreaPixels::widthOf(height) : area().width, height));
}

void AreaSelection::chooseWhole()
{
    edit(std::nullopt);
}

void AreaSelection::chooseBelow(double menuBar)
{
    edit(withoutMenuBar(menuBar));
}

void AreaSelection::choose(const QVariant& crop)
{
    edit(cropOf(crop));
}

void AreaSelection::choosePage(const QVariant& crop)
{
    m_page = cropOf(crop);
    choose(crop);
}

void AreaSelection::forgetPage()
{
    m_page.reset();
    Q_EMIT changed();
}

bool AreaSelection::pressKey(int key, int modifiers)
{
    const int dx = (key == Qt::Key_Right) - (key == Qt::Key_Left), dy = (key == Qt::Key_Down) - (key == Qt::Key_Up);
    if (dx == 0 && dy == 0)
        return false;
    const bool isFar = (modifiers & Qt::ShiftModifier) != 0;
    if (modifiers & Qt::AltModifier)
        resize(dx * (isFar ? 10 : 2), dy * (isFar ? 10 : 2));
    else
        move(dx * (isFar ? 10 : 1), dy * (isFar ? 10 : 1));
    return true;
}

void AreaSelection::editPixels(const PixelRect& area)
{
    edit(area == pixels().whole() ? std::nullopt : std::optional(pixels().fractions(area)));
}

void AreaSelection::edit(const std::optional<CropRect>& crop)
{
    if (!changeTo(m_crop, crop))
        return;
    Q_EMIT changed();
    Q_EMIT edited(cropValue(crop));
}

void AreaSelection::setDragged(const std::optional<CropRect>& dragged)
{
    if (changeTo(m_dragged, dragged))
        Q_EMIT changed();
}

} // namespace vantry
