#include "render/OverlayLayer.h"

#include <cmath>

namespace vantry {

namespace {

// BT.709, limited range; sixteen bits behind the point.
struct Weights {
    int red;
    int green;
    int blue;
    int base; ///< What transparent black has none of: times alpha.
};
constexpr double kr = 0.2126;
constexpr double kb = 0.0722;
constexpr int fixed(double value)
{
    return static_cast<int>(value * 65536 + (value < 0 ? -0.5 : 0.5));
}
constexpr double lumaScale = 219.0 / 255;
constexpr double chromaScale = 224.0 / 255;
constexpr std::array<Weights, 3> weights{ {
    { fixed(kr * lumaScale), fixed((1 - kr - kb) * lumaScale), fixed(kb* lumaScale), fixed(16.0 / 255) },
    { fixed(-kr / (2 * (1 - kb)) * chromaScale), fixed(-(1 - kr - kb) / (2 * (1 - kb)) * chromaScale), fixed(0.5 * chromaScale),
        fixed(128.0 / 255) },
    { fixed(0.5 * chromaScale), fixed(-(1 - kr - kb) / (2 * (1 - kr)) * chromaScale), fixed(-kb / (2 * (1 - kr)) * chromaScale),
        fixed(128.0 / 255) },
} };

std::uint8_t converted(const std::uint8_t* bgra, const Weights& w)
{
    const int value = bgra[2] * w.red + bgra[1] * w.green + bgra[0] * w.blue + bgra[3] * w.base;
    return static_cast<std::uint8_t>(std::clamp((value + 32768) >> 16, 0, 255));
}

} // namespace

OverlayLayer::OverlayLayer(const Bitmap& bitmap, int frameWidth, int frameHeight)
    : m_frame{ 0, 0, frameWidth, frameHeight }
    , m_sourceAlpha(bitmap.width(), bitmap.height())
{
    m_source.fill(Samples(bitmap.width(), bitmap.height()));
    for (int y = 0; y < bitmap.height(); ++y) {
        const auto* pixels = bitmap.row(y);
        for (std::size_t index = 0; index < m_source.size(); ++index) {
            auto* row = m_source[index].plane().row(y);
            for (int x = 0; x < bitmap.width(); ++x)
                row[x] = converted(pixels + 4 * x, weights[index]);
        }
        auto* alpha = m_sourceAlpha.plane().row(y);
        for (int x = 0; x < bitmap.width(); ++x)
            alpha[x] = pixels[4 * x + 3];
    }
}

void OverlayLayer::update(const OverlayPlacement& placement, TileMap& changed)
{
    if (placement == m_placement)
        return;
    changed.mark(m_bounds);
    const bool moved = placement.rect != m_placement.rect;
    m_placement = placement;
    if (moved)
        scale();
    changed.mark(m_bounds);
}

void OverlayLayer::scale()
{
    const auto& placed = m_placement.rect;
    const Rect rect{ placed.x, m_frame.bottom - placed.y - placed.height, placed.width, placed.height };
    m_bounds = isDrawable(rect) ? evenBounds(rect, 0, m_frame) : FrameRect();
    if (m_bounds.empty()) {
        m_bounds = {};
        return;
    }
    const int width = m_sourceAlpha.width;
    const int height = m_sourceAlpha.height;
    const Rect source{ 0, 0, static_cast<double>(width), static_cast<double>(height) };
    PlaneScaler luma(source, rect, m_bounds, width, height);
    PlaneScaler chroma(source, halved(rect), m_bounds.halved(), width, height);
    for (std::size_t index = 0; index < m_scaled.size(); ++index) {
        auto& scaler = index == PlaneY ? luma : chroma;
        const auto area = index == PlaneY ? m_bounds : m_bounds.halved();
        auto& [colour, alpha] = m_scaled[index];
        colour = Samples(area.width(), area.height());
        scaler.scale(m_source[index].plane(), colour.plane(), area.left, area.top, area);
        if (index == PlaneCr) {
            alpha = m_scaled[PlaneCb].alpha;
            continue;
        }
        alpha = Samples(area.width(), area.height());
        scaler.scale(m_sourceAlpha.plane(), alpha.plane(), area.left, area.top, area);
    }
}

void OverlayLayer::draw(PictureBuffer& frame, const FrameRect& wanted) const
{
    const auto area = wanted.intersected(m_bounds);
    const auto opacity = opacityOf(m_placement.opacity);
    if (area.empty() || opacity == 0)
        return;
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto part = index == PlaneY ? area : area.halved();
        const auto bounds = index == PlaneY ? m_bounds : m_bounds.halved();
        const auto& [colour, alpha] = m_scaled[static_cast<std::size_t>(index)];
        const auto target = frame.plane(index);
        for (int y = part.top; y < part.bottom; ++y) {
            const int offset = part.left - bounds.left;
            blendPremultiplied(target.row(y) + part.left, colour.row(y - bounds.top) + offset, alpha.row(y - bounds.top) + offset,
                opacity, part.width());
        }
    }
}

} // namespace vantry
