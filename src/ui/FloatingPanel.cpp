#include "ui/FloatingPanel.h"

#include "ui/EventTime.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QRegion>
#include <QResizeEvent>

#include <algorithm>
#include <cmath>

namespace vantry {

FloatingPanel::FloatingPanel(QWindow* parent)
    : QQuickWindow(parent)
{
    setColor(Qt::transparent);
    // A window manager would put a full-screen window above it, or give it the keyboard.
    setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus
        | Qt::NoDropShadowWindowHint | Qt::BypassWindowManagerHint);
}

void FloatingPanel::setCornerRadius(int radius)
{
    if (m_cornerRadius == radius)
        return;
    m_cornerRadius = radius;
    cutCorners();
    Q_EMIT cornerRadiusChanged();
}

bool FloatingPanel::event(QEvent* event)
{
    const bool isPress = event->type() == QEvent::MouseButtonPress;
    if (isPress)
        m_pressTime = hostTimeOf(static_cast<QMouseEvent*>(event)->timestamp(), HostClock::now());
    const bool isTaken = QQuickWindow::event(event);
    if (isPress)
        Q_EMIT pressed();
    if (event->type() == QEvent::MouseButtonRelease)
        m_pressTime.reset();
    return isTaken;
}

double FloatingPanel::pressAge() const
{
    return m_pressTime ? seconds(HostClock::now() - *m_pressTime) : 0;
}

void FloatingPanel::resizeEvent(QResizeEvent* event)
{
    QQuickWindow::resizeEvent(event);
    cutCorners();
}

/// On an X server without a compositor nothing shines through a window, so its shape is made to fit. With one the smooth edge stays
/// inside.
void FloatingPanel::cutCorners()
{
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return;
    const QSize size(width() - 2 * m_edge, height() - 2 * m_edge);
    const int radius = std::min({ m_cornerRadius, size.width() / 2, size.height() / 2 });
    if (radius <= 0)
        return setMask(QRegion());
    QRegion shape(0, radius, size.width(), size.height() - 2 * radius);
    for (int row = 0; row < radius; ++row) {
        // Half of the chord at the row's lower edge, where it is longest.
        const double reach = std::sqrt(radius * radius - (radius - row - 1) * (radius - row - 1));
        const int inset = radius - static_cast<int>(std::ceil(reach));
        shape += QRect(inset, row, size.width() - 2 * inset, 1);
        shape += QRect(inset, size.height() - 1 - row, size.width() - 2 * inset, 1);
    }
    setMask(shape.translated(m_edge, m_edge));
}

} // namespace vantry
