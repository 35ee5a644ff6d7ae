#include "ui/PlanesMaterial.h"

#include <QSGMaterialShader>

#include <compare>
#include <cstring>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

/// As the shaders declare them.
struct Values {
    float matrix[16];
    float spread[2];
    float opacity;
};

class PlanesShader : public QSGMaterialShader {
public:
    PlanesShader()
    {
        setShaderFileName(VertexStage, u":/shaders/planes.vert.qsb"_s);
        setShaderFileName(FragmentStage, u":/shaders/planes.frag.qsb"_s);
    }

    bool updateUniformData(RenderState& state, QSGMaterial* material, QSGMaterial*) override
    {
        const auto& planes = static_cast<const PlanesMaterial&>(*material);
        Values values{ .matrix = {}, .spread = { planes.spread.x(), planes.spread.y() }, .opacity = state.opacity() };
        std::memcpy(values.matrix, state.combinedMatrix().constData(), sizeof values.matrix);
        std::memcpy(state.uniformData()->data(), &values, sizeof values);
        return true;
    }

    void updateSampledImage(RenderState&, int binding, QSGTexture** texture, QSGMaterial* material, QSGMaterial*) override
    {
        *texture = static_cast<const PlanesMaterial&>(*material).textures.at(static_cast<std::size_t>(binding - 1));
    }
};

} // namespace

QSGMaterialType* PlanesMaterial::type() const
{
    static QSGMaterialType type;
    return &type;
}

QSGMaterialShader* PlanesMaterial::createShader(QSGRendererInterface::RenderMode) const
{
    return new PlanesShader;
}

int PlanesMaterial::compare(const QSGMaterial* other) const
{
    const auto order = std::compare_three_way()(static_cast<const QSGMaterial*>(this), other);
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

} // namespace vantry
