#pragma once

#include "base/HostTime.h"

#include <QQuickWindow>
#include <optional>
#include <qqmlregistration.h>

namespace vantry {

/// A window of its own above all others, on every desktop and beside every full-screen window. Nothing gives it the keyboard, so
/// that the program that is being recorded keeps it, and the first click on it counts already.
class FloatingPanel : public QQuickWindow {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int cornerRadius MEMBER m_cornerRadius WRITE setCornerRadius NOTIFY cornerRadiusChanged)
    Q_PROPERTY(int edge MEMBER m_edge NOTIFY edgeChanged)

public:
    explicit FloatingPanel(QWindow* parent = nullptr);

    /// Logical pixels. What lies outside of the corners is no part of the window: it is not painted and lets clicks through.
    void setCornerRadius(int radius);

    /// While a click is handled: how many seconds ago its button was pressed. Else 0.
    Q_INVOKABLE double pressAge() const;

Q_SIGNALS:
    /// A mouse button was pressed on it, and what it fell on knows that.
    void pressed();
    void cornerRadiusChanged();
    void edgeChanged();

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void cutCorners();

    int m_cornerRadius = 0;
    std::optional<HostTime> m_pressTime;
    int m_edge = 0; ///< So much on all sides is no part of the window either.
};

} // namespace vantry
