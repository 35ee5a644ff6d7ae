#pragma once

#include <QSGMaterial>
#include <QSGTexture>
#include <QVector2D>

#include <array>

namespace vantry {

/// Draws the three planes of a 4:2:0 picture, each a texture of one channel, in the colours that they mean. Belongs to the render
/// thread.
class PlanesMaterial : public QSGMaterial {
public:
    QSGMaterialType* type() const override;
    QSGMaterialShader* createShader(QSGRendererInterface::RenderMode) const override;
    int compare(const QSGMaterial* other) const override;

    /// By the planes' order. They belong to the node.
    std::array<QSGTexture*, 3> textures{};

    /// How far around its place a pixel looks in a picture that is shown smaller, as fractions of the picture; else nothing.
    QVector2D spread;
};

} // namespace vantry
