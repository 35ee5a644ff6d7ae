#pragma once

#include <QPointF>
#include <QQuickItem>
#include <qqmlregistration.h>

namespace vantry {

/// Moves its window with the mouse. A window that the window manager knows nothing of has nobody else to do it.
class DragHandle : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT

public:
    explicit DragHandle(QQuickItem* parent = nullptr);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    QPointF m_grip; ///< Of the pointer, from the window's corner.
};

} // namespace vantry
