#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "model/PictureImages.h"

#include <atomic>
#include <memory>

namespace vantry {

class CameraPreview;

/// The camera's newest picture as an image, for the views. It is made when a view asks, so that a camera nobody looks at costs
/// nothing. Belongs to the main thread.
class CameraMirror : public QObject {
    Q_OBJECT

public:
    /// Takes over the preview, which outlives the mirror.
    explicit CameraMirror(CameraPreview& preview);
    ~CameraMirror() override;

    /// Covers this size, in pixels, with what reaches over the edges cut off. Null while no camera delivers.
    QImage image(QSize size);

Q_SIGNALS:
    /// There is a newer picture, or none any more. Pictures that come while a view is busy are told once.
    void changed();

private:
    CameraPreview& m_preview;
    PictureImages m_images;

    /// A change is on its way from the camera's thread.
    const std::shared_ptr<std::atomic<bool>> m_isTold = std::make_shared<std::atomic<bool>>(false);
};

} // namespace vantry
