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
    Q_PROPERTY(int edge MEMBER m_edge NOTIFY edgeChanged)

public:
    explicit FloatingPanel(QWindow* parent = nullptr);

    /// Logical pixels. What lies outside of the corners is no part of the window: it is not painted and lets clicks through.
    void setCornerRadius(int radius);

Q_SIGNALS:
    void cornerRadiusChanged();
    void edgeChanged();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void cutCorners();

    int m_cornerRadius = 0;
    int m_edge = 0; ///< So much on all sides is no part of the window either.
};

} // namespace vantry
