#include "ui/PictureView.h"

#include "model/ChangeTo.h"
#include "ui/ImageNode.h"
#include "ui/PlanesNode.h"

#include <QQuickWindow>

namespace vantry {

PictureView::PictureView(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void PictureView::setPreview(PreviewFlow* preview)
{
    if (!changeTo(m_preview, preview))
        return;
    connect(m_preview, &PreviewFlow::pictureChanged, this, [this] { setPicture(m_preview->picture()); });
    setPicture(m_preview->picture());
    Q_EMIT previewChanged();
}

void PictureView::setPicture(const Picture& picture)
{
    if (changeTo(m_picture, picture))
        update();
}

void PictureView::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    update();
}

/// Whole pixels of the screen, from the item's corner, or everything would be a little blurred.
QRect PictureView::fittedPixels(double scale) const
{
    const QSize room(static_cast<int>(width() * scale), static_cast<int>(height() * scale));
    const QSize fitted = QSize(m_picture.width(), m_picture.height()).scaled(room, Qt::KeepAspectRatio);
    return { QPoint((room.width() - fitted.width()) / 2, (room.height() - fitted.height()) / 2), fitted };
}

QSGNode* PictureView::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    const double scale = window()->effectiveDevicePixelRatio();
    const QRect pixels = m_picture ? fittedPixels(scale) : QRect();
    if (pixels.isEmpty()) {
        delete old;
        return nullptr;
    }
    const QRectF place(QPointF(pixels.topLeft()) / scale, QSizeF(pixels.size()) / scale);
    auto* node = dynamic_cast<PlanesNode*>(old);
    if (!node && (old || !PlanesNode::isPossible(*window())))
        return imageNode(old, m_images.filling(m_picture, pixels.size()), place, *window());
    if (!node)
        node = new PlanesNode;
    node->show(m_picture, place, pixels.size(), *window());
    return node;
}

} // namespace vantry
