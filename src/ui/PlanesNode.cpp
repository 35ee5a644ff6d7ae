#include "ui/PlanesNode.h"

#include <QOpenGLContext>
#include <QOpenGLPixelTransferOptions>
#include <QOpenGLTexture>
#include <QQuickWindow>

#include <algorithm>

namespace vantry {

namespace {

/// How far from the middle two samples that are each smoothed over one lie apart so that together they cover the samples of one
/// pixel: in samples, when there are `density` of them to a pixel. Sample by sample up to two, and no gap between them beyond.
float spreadFor(float density)
{
    return std::min((density - 1) / 2, density / 4);
}

} // namespace

bool PlanesNode::isPossible(const QQuickWindow& window)
{
    // Older ones have no textures of one channel.
    const auto* context = QOpenGLContext::currentContext();
    return window.rendererInterface()->graphicsApi() == QSGRendererInterface::OpenGL && context
        && context->format().majorVersion() >= 3;
}

PlanesNode::PlanesNode()
    : m_geometry(QSGGeometry::defaultAttributes_TexturedPoint2D(), 4)
{
    setGeometry(&m_geometry);
    setMaterial(&m_material);
}

PlanesNode::~PlanesNode() = default;

void PlanesNode::show(const Picture& picture, const QRectF& place, QSize pixels, QQuickWindow& window)
{
    if (!(picture == m_uploaded))
        upload(picture, window);
    const QVector2D size(static_cast<float>(picture.width()), static_cast<float>(picture.height()));
    const QVector2D density = size / QVector2D(static_cast<float>(pixels.width()), static_cast<float>(pixels.height()));
    const QVector2D spread(spreadFor(density.x()), spreadFor(density.y()));
    m_material.spread = spread.x() > 0 && spread.y() > 0 ? spread / size : QVector2D();
    QSGGeometry::updateTexturedRectGeometry(&m_geometry, place, QRectF(0, 0, 1, 1));
    markDirty(DirtyGeometry | DirtyMaterial);
}

void PlanesNode::upload(const Picture& picture, QQuickWindow& window)
{
    for (const int index : { PlaneY, PlaneCb, PlaneCr }) {
        auto& texture = m_textures.at(index);
        upload(picture.plane(index), texture, window);
        m_material.textures.at(index) = texture.wrapped.get();
    }
    m_uploaded = picture;
}

void PlanesNode::upload(const Plane& plane, Texture& texture, QQuickWindow& window)
{
    if (!texture.memory || texture.memory->width() != plane.width || texture.memory->height() != plane.height) {
        texture.wrapped.reset();
        texture.memory = std::make_unique<QOpenGLTexture>(QOpenGLTexture::Target2D);
        texture.memory->setFormat(QOpenGLTexture::R8_UNorm);
        texture.memory->setSize(plane.width, plane.height);
        texture.memory->allocateStorage(QOpenGLTexture::Red, QOpenGLTexture::UInt8);
        texture.wrapped.reset(
            QNativeInterface::QSGOpenGLTexture::fromNative(texture.memory->textureId(), &window, QSize(plane.width, plane.height)));
        texture.wrapped->setFiltering(QSGTexture::Linear);
        texture.wrapped->setHorizontalWrapMode(QSGTexture::ClampToEdge);
        texture.wrapped->setVerticalWrapMode(QSGTexture::ClampToEdge);
    }
    QOpenGLPixelTransferOptions rows;
    rows.setRowLength(static_cast<int>(plane.stride));
    rows.setAlignment(1);
    texture.memory->setData(QOpenGLTexture::Red, QOpenGLTexture::UInt8, plane.data, &rows);
}

} // namespace vantry
