#pragma once

#include "model/PictureImages.h"

#include <QQuickItem>
#include <qqmlregistration.h>

namespace vantry {

/// A picture as large as it fits, in its own shape, in the middle.
class PictureView : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vantry::Picture picture READ picture WRITE setPicture NOTIFY pictureChanged)

public:
    explicit PictureView(QQuickItem* parent = nullptr);

    const Picture& picture() const { return m_picture; }

    /// A null one shows nothing.
    void setPicture(const Picture& picture);

Q_SIGNALS:
    void pictureChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData*) override;

private:
    QRect fittedPixels(double scale) const;

    Picture m_picture;

    // Belongs to the render thread.
    PictureImages m_images;
};

} // namespace vantry
