#include "ui/DragHandle.h"

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
}

/// The position on the screen is the only one that the window's own moves do not change.
void DragHandle::mouseMoveEvent(QMouseEvent* event)
{
    window()->setPosition((event->globalPosition() - m_grip).toPoint());
}

} // namespace vantry
