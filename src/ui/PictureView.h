#pragma once

#include "model/PictureImages.h"
#include "model/PreviewFlow.h"

#include <QQuickItem>
#include <qqmlregistration.h>

namespace vantry {

/// A picture as large as it fits, in its own shape, in the middle. Pictures come to it in C++ alone: the objects in which QML hands
/// them on live until it collects its garbage, and each would keep some megabytes.
class PictureView : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vantry::PreviewFlow* preview READ preview WRITE setPreview NOTIFY previewChanged)

public:
    explicit PictureView(QQuickItem* parent = nullptr);

    PreviewFlow* preview() const { return m_preview; }

    /// Shows its pictures from now on. It outlives the item.
    void setPreview(PreviewFlow* preview);

    /// A null one shows nothing.
    void setPicture(const Picture& picture);

Q_SIGNALS:
    void previewChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData*) override;

private:
    QRect fittedPixels(double scale) const;

    PreviewFlow* m_preview = nullptr;
    Picture m_picture;

    // Belongs to the render thread.
    PictureImages m_images;
};

} // namespace vantry
