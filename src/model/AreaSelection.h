#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "model/AreaPixels.h"
#include "project/Project.h"

#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QString>
#include <QVariant>

#include <optional>

namespace vantry {

/// The part of a screen that is chosen, while somebody changes it by dragging, with keys or by typing its size. What is dragged is
/// shown and becomes the crop when the drag ends. Belongs to the main thread.
class AreaSelection : public QObject {
    Q_OBJECT

    /// A rectangle of fractions of the screen, or undefined for all of it.
    Q_PROPERTY(QVariant crop READ crop WRITE setCrop NOTIFY changed)

    /// The screen's size.
    Q_PROPERTY(QSize pixelSize READ pixelSize WRITE setPixelSize NOTIFY changed)

    /// The area keeps 16:9 from now on.
    Q_PROPERTY(bool isLocked READ isLocked WRITE setLocked NOTIFY changed)

    /// What is to be outlined, in fractions: what is dragged, else the crop, else everything.
    Q_PROPERTY(QRectF shown READ shown NOTIFY changed)
    Q_PROPERTY(bool isDragging READ isDragging NOTIFY changed)
    Q_PROPERTY(bool isWhole READ isWhole NOTIFY changed)
    Q_PROPERTY(bool isBelowMenuBar READ isBelowMenuBar NOTIFY changed)
    Q_PROPERTY(bool isPage READ isPage NOTIFY changed) ///< The one that `choosePage` chose last.
    Q_PROPERTY(QString name READ name NOTIFY changed)

    /// Whole pixels of what is shown.
    Q_PROPERTY(int pixelWidth READ pixelWidth NOTIFY changed)
    Q_PROPERTY(int pixelHeight READ pixelHeight NOTIFY changed)
    Q_PROPERTY(QString readout READ readout NOTIFY changed)

public:
    enum Edge { NoEdge = 0, LeftEdge = 1, TopEdge = 2, RightEdge = 4, BottomEdge = 8 };
    Q_ENUM(Edge)

    QVariant crop() const;
    void setCrop(const QVariant& value);
    QSize pixelSize() const { return m_pixelSize; }
    void setPixelSize(QSize size);
    bool isLocked() const { return m_isLocked; }
    void setLocked(bool locked);

    QRectF shown() const;
    bool isDragging() const { return m_dragged.has_value(); }
    bool isWhole() const { return !m_crop && !m_dragged; }
    bool isBelowMenuBar() const;
    bool isPage() const { return m_page && m_crop == m_page; }
    QString name() const;
    int pixelWidth() const;
    int pixelHeight() const;

    /// "1280 × 720 px".
    QString readout() const;

    // Commands. Those that come to a new crop say so with `edited`.

    /// Draws an area from one point of a view of this size to another.
    Q_INVOKABLE void draw(QPointF from, QPointF to, QSizeF view);

    /// Drags the crop's sides (`Edge`, several added up), or the whole of it with none, by this way in a view of this size.
    Q_INVOKABLE void drag(int edges, QPointF by, QSizeF view);

    /// What was drawn or dragged becomes the crop, if it is large enough to be meant.
    Q_INVOKABLE void endDrag();
    Q_INVOKABLE void cancelDrag();

    /// In pixels.
    Q_INVOKABLE void move(int dx, int dy);

    /// Moves the right and the lower side, in pixels.
    Q_INVOKABLE void resize(int dx, int dy);

    /// In pixels; with the lock on the other one follows.
    Q_INVOKABLE void setPixelWidth(int width);
    Q_INVOKABLE void setPixelHeight(int height);

    Q_INVOKABLE void chooseWhole();
    Q_INVOKABLE void chooseBelow(double menuBar);
    Q_INVOKABLE void choose(const QVariant& crop);

    /// The page that a browser shows.
    Q_INVOKABLE void choosePage(const QVariant& crop);
    Q_INVOKABLE void forgetPage();

    /// The arrow keys move the crop by a pixel, or by ten with Shift; with Alt they move its right and lower sides, by two or ten.
    /// False for every other key (`Qt::Key`, `Qt::KeyboardModifiers`).
    Q_INVOKABLE bool pressKey(int key, int modifiers);

Q_SIGNALS:
    void changed();

    /// The user chose another crop.
    void edited(const QVariant& crop);

private:
    AreaPixels pixels() const { return { m_pixelSize.width(), m_pixelSize.height() }; }
    AreaShape shape() const { return m_isLocked ? AreaShape::Wide : AreaShape::Free; }
    PixelRect area() const;
    void edit(const std::optional<CropRect>& crop);
    void editPixels(const PixelRect& area);
    void setDragged(const std::optional<CropRect>& dragged);

    std::optional<CropRect> m_crop;
    std::optional<CropRect> m_dragged;
    std::optional<CropRect> m_page;
    QSize m_pixelSize;
    bool m_isLocked = false;
};

} // namespace vantry
