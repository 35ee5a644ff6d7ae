#include "ui/ImageNode.h"

#include <QQuickWindow>
#include <QSGImageNode>

namespace vantry {

QSGNode* imageNode(QSGNode* old, const QImage& image, const QRectF& place, QQuickWindow& window)
{
    if (image.isNull()) {
        delete old;
        return nullptr;
    }
    auto* node = static_cast<QSGImageNode*>(old);
    if (!node) {
        node = window.createImageNode();
        node->setOwnsTexture(true);
        node->setFiltering(QSGTexture::Linear);
    }
    node->setTexture(window.createTextureFromImage(image));
    node->setRect(place);
    return node;
}

} // namespace vantry
