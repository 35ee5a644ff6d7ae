#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "base/Worker.h"
#include "platform/Displays.h"

#include <QCoroTask>
#include <QImage>
#include <QSize>

#include <optional>

namespace vantry {

/// A still picture of the chosen display, without the cursor and without our own windows, and what there is to know of the display
/// for choosing a part of it. Belongs to the main thread; the picture is taken on one of its own.
class ScreenPreview : public QObject {
    Q_OBJECT

    /// 1280 wide; null as long as none could be taken.
    Q_PROPERTY(QImage image READ image NOTIFY imageChanged)
    Q_PROPERTY(bool hasImage READ hasImage NOTIFY imageChanged)

    /// The display's.
    Q_PROPERTY(quint32 displayID READ displayID NOTIFY displayChanged)
    Q_PROPERTY(QSize pixelSize READ pixelSize NOTIFY displayChanged)

    /// The height of the panel at the display's top as a fraction of the display's; 0 where there is none.
    Q_PROPERTY(double menuBar READ menuBar NOTIFY displayChanged)

public:
    ScreenPreview();
    ~ScreenPreview() override;

    const QImage& image() const { return m_image; }
    bool hasImage() const { return !m_image.isNull(); }
    quint32 displayID() const { return m_display ? m_display->id : 0; }
    QSize pixelSize() const { return m_display ? QSize(m_display->width, m_display->height) : QSize(); }
    double menuBar() const { return m_menuBar; }

    /// Takes another picture, of this display. What goes wrong leaves the last one. Of several at a time the newest counts.
    QCoro::Task<> capture(std::optional<Display> display);

Q_SIGNALS:
    void imageChanged();
    void displayChanged();

private:
    std::optional<Display> m_display;
    double m_menuBar;
    QImage m_image;
    int m_newest = 0;
    Worker m_worker{ "screen still" };
};

/// What the panel at the display's top takes of its height, and a guess where there is no display.
double menuBarFraction(const std::optional<Display>& display);

} // namespace vantry
