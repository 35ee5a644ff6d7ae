#pragma once

#include <QPointF>
#include <QQuickItem>
#include <QRect>
#include <qqmlregistration.h>

namespace vantry {

/// Moves its window with the mouse. A window that the window manager knows nothing of has nobody else to do it.
class DragHandle : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QRect area MEMBER m_area NOTIFY areaChanged) ///< Of the screen; the window stays within.

public:
    explicit DragHandle(QQuickItem* parent = nullptr);

Q_SIGNALS:
    void areaChanged();

    /// The window was moved, and let go there: its upper left corner.
    void dropped(QPoint place);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    QRect m_area;
    QPointF m_grip; ///< Of the pointer, from the window's corner.
    bool m_hasMoved = false;
};

} // namespace vantry
