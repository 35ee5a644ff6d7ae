#pragma once

#include "model/PictureImages.h"
#include "ui/PlanesMaterial.h"

#include <QSGGeometryNode>

#include <array>
#include <memory>

class QOpenGLTexture;
class QQuickWindow;

namespace vantry {

/// A picture whose planes the graphics processor turns into colours. For windows that are drawn with OpenGL, and for their render
/// thread.
class PlanesNode : public QSGGeometryNode {
public:
    /// Whether what draws the window can do this.
    static bool isPossible(const QQuickWindow& window);

    PlanesNode();
    ~PlanesNode() override;

    /// Shows the picture in `place`, which takes up this many pixels.
    void show(const Picture& picture, const QRectF& place, QSize pixels, QQuickWindow& window);

private:
    struct Texture {
        std::unique_ptr<QOpenGLTexture> memory;
        std::unique_ptr<QSGTexture> wrapped; ///< As the scene graph wants it.
    };

    void upload(const Picture& picture, QQuickWindow& window);
    static void upload(const Plane& plane, Texture& texture, QQuickWindow& window);

    QSGGeometry m_geometry;
    PlanesMaterial m_material;
    std::array<Texture, 3> m_textures;
    Picture m_uploaded;
};

} // namespace vantry
