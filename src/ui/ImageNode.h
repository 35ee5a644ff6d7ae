#pragma once

#include <QImage>
#include <QRectF>

class QQuickWindow;
class QSGNode;

namespace vantry {

/// The node that shows an image in `place`: `old`, or a new one where that is none. Nothing for a null image. For `updatePaintNode`
/// of an item that shows images only.
QSGNode* imageNode(QSGNode* old, const QImage& image, const QRectF& place, QQuickWindow& window);

} // namespace vantry
