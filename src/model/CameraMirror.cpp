#include "model/CameraMirror.h"

#include "capture/CameraPreview.h"

#include <QCoreApplication>
#include <QPointer>

namespace vantry {

CameraMirror::CameraMirror(CameraPreview& preview)
    : m_preview(preview)
{
    m_preview.setOnChange([mirror = QPointer(this), isTold = m_isTold] {
        if (isTold->exchange(true))
            return;
        QMetaObject::invokeMethod(
            qApp,
            [mirror, isTold] {
                isTold->store(false);
                if (mirror)
                    Q_EMIT mirror->changed();
            },
            Qt::QueuedConnection);
    });
}

CameraMirror::~CameraMirror()
{
    m_preview.setOnChange({});
}

QImage CameraMirror::image(QSize size)
{
    const auto sample = m_preview.latest();
    return sample ? m_images.covering(sample->picture, size) : QImage();
}

} // namespace vantry
