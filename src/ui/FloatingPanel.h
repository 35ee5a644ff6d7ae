#pragma once

#include <QQuickWindow>
#include <qqmlregistration.h>

namespace vantry {

/// A window of its own above all others, on every desktop and beside every full-screen window. Nothing gives it the keyboard, so
/// that the program that is being recorded keeps it, and the first click on it counts already.
class FloatingPanel : public QQuickWindow {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int cornerRadius MEMBER m_cornerRadius WRITE setCornerRadius NOTIFY cornerRadiusChanged)

public:
    explicit FloatingPanel(QWindow* parent = nullptr);

    /// Logical pixels. What lies outside of the corners is no part of the window: it is not painted and lets clicks through.
    void setCornerRadius(int radius);

Q_SIGNALS:
    void cornerRadiusChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void cutCorners();

    int m_cornerRadius = 0;
};

} // namespace vantry
