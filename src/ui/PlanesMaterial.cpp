#include "ui/PlanesMaterial.h"

#include <QSGMaterialShader>

#include <cstring>
#include <functional>

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
    // Each has textures of its own.
    const std::less<> isBefore;
    return isBefore(this, other) ? -1 : isBefore(other, this) ? 1 : 0;
}

} // namespace vantry
