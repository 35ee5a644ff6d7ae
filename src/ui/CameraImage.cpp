#include "ui/CameraImage.h"

#include "model/ChangeTo.h"
#include "ui/ImageNode.h"

#include <QPainter>
#include <QQuickWindow>

#include <algorithm>

namespace vantry {

namespace {

QImage withRoundCorners(const QImage& image, double radius)
{
    if (image.isNull() || radius <= 0)
        return image;
    QImage rounded(image.size(), QImage::Format_ARGB32_Premultiplied);
    rounded.fill(Qt::transparent);
    QPainter painter(&rounded);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(image);
    painter.drawRoundedRect(rounded.rect(), radius, radius);
    return rounded;
}

} // namespace

CameraImage::CameraImage(QQuickItem* parent)
    : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &QQuickItem::polish);
}

void CameraImage::setMirror(CameraMirror* mirror)
{
    if (!changeTo(m_mirror, mirror))
        return;
    connect(m_mirror, &CameraMirror::changed, this, &CameraImage::onPicture);
    polish();
    Q_EMIT mirrorChanged();
}

void CameraImage::onPicture()
{
    const auto left = m_shown + std::chrono::milliseconds(m_interval) - HostClock::now();
    if (left <= HostDuration::zero())
        polish();
    else if (!m_next.isActive())
        m_next.start(std::chrono::ceil<std::chrono::milliseconds>(left));
}

void CameraImage::geometryChange(const QRectF& now, const QRectF& before)
{
    QQuickItem::geometryChange(now, before);
    polish();
}

void CameraImage::updatePolish()
{
    if (!m_mirror || !window())
        return;
    m_shown = HostClock::now();
    const bool wasLive = isLive();
    const double scale = window()->effectiveDevicePixelRatio();
    m_image =
        withRoundCorners(m_mirror->image((size() * scale).toSize()), std::min(m_radius, std::min(width(), height()) / 2) * scale);
    if (isLive() != wasLive)
        Q_EMIT isLiveChanged();
    update();
}

QSGNode* CameraImage::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    return imageNode(old, m_image, boundingRect(), *window());
}

} // namespace vantry
