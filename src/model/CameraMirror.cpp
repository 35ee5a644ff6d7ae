#include "model/CameraMirror.h"

#include "base/AppError.h"
#include "base/Log.h"
#include "capture/CameraPreview.h"
#include "media/RgbScaler.h"

#include <QCoreApplication>
#include <QPointer>

namespace vantry {

CameraMirror::CameraMirror(CameraPreview& preview)
    : m_preview(preview)
    , m_scaler(std::make_unique<RgbScaler>())
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
    if (!sample || size.isEmpty())
        return {};
    QImage image(size, QImage::Format_RGB32);
    try {
        m_scaler->cover({ image.bits(), image.bytesPerLine(), { size.width(), size.height() } }, sample->picture);
    } catch (const std::exception& error) {
        qCWarning(logModel) << error.what();
        return {};
    }
    return image;
}

} // namespace vantry
