#pragma once

#include "base/HostTime.h"
#include "model/CameraMirror.h"

#include <QImage>
#include <QQuickItem>
#include <QTimer>
#include <qqmlregistration.h>

namespace vantry {

/// The camera's live picture, covering the item. Only what is seen is drawn.
class CameraImage : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vantry::CameraMirror* mirror READ mirror WRITE setMirror NOTIFY mirrorChanged REQUIRED)
    Q_PROPERTY(double radius MEMBER m_radius NOTIFY radiusChanged)

    /// Milliseconds that a picture is seen at least; 0 for all that the camera gives.
    Q_PROPERTY(int interval MEMBER m_interval NOTIFY intervalChanged)

    /// A camera delivers.
    Q_PROPERTY(bool isLive READ isLive NOTIFY isLiveChanged)

public:
    explicit CameraImage(QQuickItem* parent = nullptr);

    CameraMirror* mirror() const { return m_mirror; }

    /// The mirror outlives the item.
    void setMirror(CameraMirror* mirror);

    bool isLive() const { return !m_image.isNull(); }

Q_SIGNALS:
    void mirrorChanged();
    void radiusChanged();
    void intervalChanged();
    void isLiveChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void updatePolish() override;
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData*) override;

private:
    void onPicture();

    CameraMirror* m_mirror = nullptr;
    double m_radius = 0;
    int m_interval = 0;
    HostTime m_shown; ///< When the last picture was made.
    QTimer m_next; ///< Runs while a newer one waits.
    QImage m_image;
};

} // namespace vantry
