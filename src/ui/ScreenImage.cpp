#include "ui/ScreenImage.h"

#include "model/ChangeTo.h"
#include "ui/ImageNode.h"

#include <QQuickWindow>

namespace vantry {

ScreenImage::ScreenImage(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
}

void ScreenImage::setPreview(ScreenPreview* preview)
{
    if (!changeTo(m_preview, preview))
        return;
    connect(m_preview, &ScreenPreview::imageChanged, this, &QQuickItem::update);
    update();
    Q_EMIT previewChanged();
}

QSGNode* ScreenImage::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    return imageNode(old, m_preview ? m_preview->image() : QImage(), boundingRect(), *window());
}

} // namespace vantry
