#include "model/PictureImages.h"

#include "base/Log.h"
#include "media/RgbScaler.h"

namespace vantry {

namespace {

template <typename Draw>
QImage drawn(QSize size, Draw draw)
{
    if (size.isEmpty())
        return {};
    QImage image(size, QImage::Format_RGB32);
    try {
        draw(MutableRgbPixels{ image.bits(), image.bytesPerLine(), { size.width(), size.height() } });
    } catch (const std::exception& error) {
        qCWarning(logModel) << error.what();
        return {};
    }
    return image;
}

} // namespace

PictureImages::PictureImages()
    : m_scaler(std::make_unique<RgbScaler>())
{
}

PictureImages::~PictureImages() = default;

QImage PictureImages::covering(const Picture& picture, QSize size)
{
    return drawn(size, [&](const MutableRgbPixels& pixels) { m_scaler->cover(pixels, picture); });
}

QImage PictureImages::filling(const Picture& picture, QSize size)
{
    return drawn(size, [&](const MutableRgbPixels& pixels) { m_scaler->fill(pixels, picture); });
}

} // namespace vantry
