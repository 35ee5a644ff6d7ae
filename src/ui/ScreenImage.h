#pragma once

#include "model/ScreenPreview.h"

#include <QQuickItem>
#include <qqmlregistration.h>

namespace vantry {

/// The still picture of the screen, stretched over the item.
class ScreenImage : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vantry::ScreenPreview* preview READ preview WRITE setPreview NOTIFY previewChanged REQUIRED)

public:
    explicit ScreenImage(QQuickItem* parent = nullptr);

    ScreenPreview* preview() const { return m_preview; }

    /// The preview outlives the item.
    void setPreview(ScreenPreview* preview);

Q_SIGNALS:
    void previewChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData*) override;

private:
    ScreenPreview* m_preview = nullptr;
};

} // namespace vantry
