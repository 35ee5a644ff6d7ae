#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "model/LayoutKind.h"

#include <QRectF>
#include <QSizeF>

namespace vantry {

/// Where screen and camera are in a picture of the video, by the geometry of the frames that are exported. In the frame's own
/// units, origin at the top left. Belongs to the main thread.
class LayoutPlacement : public QObject {
    Q_OBJECT
    Q_PROPERTY(vantry::LayoutKind::Kind layout MEMBER m_layout NOTIFY changed)
    Q_PROPERTY(vantry::CornerKind::Kind corner MEMBER m_corner NOTIFY changed)

    /// The bubble's diameter as a fraction of the frame's height.
    Q_PROPERTY(double bubble MEMBER m_bubble NOTIFY changed)
    Q_PROPERTY(QSizeF frame MEMBER m_frame NOTIFY changed)

    /// What is shown of the screen, in any unit. Empty where there is no picture of it.
    Q_PROPERTY(QSizeF screen MEMBER m_screen NOTIFY changed)

    Q_PROPERTY(QRectF cameraRect READ cameraRect NOTIFY changed)
    Q_PROPERTY(double cameraRadius READ cameraRadius NOTIFY changed)
    Q_PROPERTY(double cameraOpacity READ cameraOpacity NOTIFY changed)
    Q_PROPERTY(double ringWidth READ ringWidth NOTIFY changed)
    Q_PROPERTY(QRectF screenRect READ screenRect NOTIFY changed)

public:
    QRectF cameraRect() const;
    double cameraRadius() const;
    double cameraOpacity() const;

    /// Of the white ring around the bubble; 0 where there is none.
    double ringWidth() const;

    /// The whole screen, fitted into the frame.
    QRectF screenRect() const;

Q_SIGNALS:
    void changed();

private:
    LayoutKind::Kind m_layout = LayoutKind::Camera;
    CornerKind::Kind m_corner = CornerKind::BottomRight;
    double m_bubble = 0;
    QSizeF m_frame;
    QSizeF m_screen;
};

} // namespace vantry
