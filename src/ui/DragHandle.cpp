#include "ui/DragHandle.h"

#include "ui/PanelPlaces.h"

#include <QMouseEvent>
#include <QQuickWindow>

namespace vantry {

DragHandle::DragHandle(QQuickItem* parent)
    : QQuickItem(parent)
{
    setAcceptedMouseButtons(Qt::LeftButton);
}

void DragHandle::mousePressEvent(QMouseEvent* event)
{
    m_grip = event->globalPosition() - window()->position();
    m_hasMoved = false;
}

/// The position on the screen is the only one that the window's own moves do not change.
void DragHandle::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint place = (event->globalPosition() - m_grip).toPoint();
    window()->setPosition(within(m_area, QRect(place, window()->size())).topLeft());
    m_hasMoved = true;
}

void DragHandle::mouseReleaseEvent(QMouseEvent*)
{
    if (m_hasMoved)
        Q_EMIT dropped(window()->position());
}

} // namespace vantry
