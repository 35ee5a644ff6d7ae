#include "render/CameraLayer.h"

#include "render/RoundedShape.h"

#include <cmath>

namespace vantry {

namespace {

constexpr std::uint8_t white[] = { 235, 128, 128 };

Rect grown(const Rect& rect, double by)
{
    return { rect.x - by, rect.y - by, rect.width + 2 * by, rect.height + 2 * by };
}

} // namespace

CameraLayer::CameraLayer(int width, int height)
    : m_frame{ 0, 0, width, height }
{
}

void CameraLayer::update(const Picture& camera, const Placement& placement, TileMap& changed)
{
    const bool newPicture = camera != m_camera;
    const bool newSize = m_camera.width() != camera.width() || m_camera.height() != camera.height();
    m_camera = camera;
    const bool shown = m_camera && placement.opacity > Renderer::leastCameraOpacity && isDrawable(placement.rect);
    if (!shown && !m_shown)
        return;
    const bool moved = shown != m_shown || newSize || (shown && placement != m_placement);
    if (!moved && !newPicture)
        return;
    if (m_shown)
        changed.mark(m_bounds);
    m_shown = shown;
    if (!shown)
        return;
    if (moved) {
        m_placement = placement;
        lay();
    }
    changed.mark(m_bounds);
    if (hidesAll())
        return; // Drawn straight from the picture.
    if (!m_image)
        m_image.emplace(m_frame.right, m_frame.bottom);
    for (int index : { PlaneY, PlaneCb, PlaneCr })
        scaler(index).scale(
            m_camera.plane(index), m_image->plane(index), 0, 0, index == PlaneY ? m_imageArea : m_imageArea.halved());
}

void CameraLayer::lay()
{
    const auto& rect = m_placement.rect;
    m_rect = { rect.x, m_frame.bottom - rect.y - rect.height, rect.width, rect.height };
    m_ring = m_placement.radius > Renderer::ringThreshold ? Renderer::ringWidth * m_frame.bottom : 0;
    m_opacity = opacityOf(m_placement.opacity);
    m_coversFrame = m_placement.radius == 0 && m_rect.x <= 0 && m_rect.y <= 0 && m_rect.right() >= m_frame.right
        && m_rect.bottom() >= m_frame.bottom;
    m_bounds = evenBounds(m_rect, m_ring, m_frame);
    m_imageArea = evenBounds(m_rect, 0, m_frame);
    if (m_imageArea.empty())
        m_imageArea = {};
    const auto source = Renderer::filling(
        { static_cast<double>(m_camera.width()), static_cast<double>(m_camera.height()) }, { rect.width, rect.height });
    m_luma = PlaneScaler(source, m_rect, m_imageArea, m_camera.width(), m_camera.height());
    m_chroma = PlaneScaler(
        halved(source), halved(m_rect), m_imageArea.halved(), m_camera.plane(PlaneCb).width, m_camera.plane(PlaneCb).height);
}

void CameraLayer::draw(PictureBuffer& frame, const FrameRect& wanted)
{
    const auto area = wanted.intersected(m_bounds);
    if (!m_shown || area.empty())
        return;
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto part = index == PlaneY ? area : area.halved();
        if (hidesAll())
            scaler(index).scale(m_camera.plane(index), frame.plane(index), 0, 0, part);
        else
            drawPlane(frame, index, part);
    }
}

/// Row by row: the middle, where the camera covers everything, as a whole; the rim, where ring and smooth edges are, sample by
/// sample.
void CameraLayer::drawPlane(PictureBuffer& frame, int index, const FrameRect& area)
{
    const double unit = index == PlaneY ? 1 : 0.5; // Plane samples in a pixel.
    const auto rect = index == PlaneY ? m_rect : halved(m_rect);
    const RoundedShape camera(rect, m_placement.radius * unit);
    const RoundedShape ring(grown(rect, m_ring * unit), (m_placement.radius + m_ring) * unit);
    const auto image = m_image->plane(index);
    const auto target = frame.plane(index);
    const double opacity = m_opacity / 256.0;

    for (int y = area.top; y < area.bottom; ++y) {
        auto* row = target.row(y);
        const auto* picture = image.row(y);
        const auto rim = [&](int from, int to) {
            for (int x = from; x < to; ++x) {
                const double inner = camera.coverage(x, y);
                const double outer = m_ring > 0 ? ring.coverage(x, y) * (1 - inner) : 0;
                const double shown = (inner * picture[x] + outer * white[index]) * opacity;
                row[x] = static_cast<std::uint8_t>(shown + (1 - (inner + outer) * opacity) * row[x] + 0.5);
            }
        };
        auto touched = (m_ring > 0 ? ring : camera).touched(y);
        touched = { std::max(touched.first, area.left), std::min(touched.last, area.right) };
        auto solid = camera.solid(y);
        solid = { std::clamp(solid.first, touched.first, std::max(touched.first, touched.last)),
            std::min(solid.last, touched.last) };
        if (solid.last <= solid.first) {
            rim(touched.first, touched.last);
            continue;
        }
        rim(touched.first, solid.first);
        blendFaded(row + solid.first, picture + solid.first, m_opacity, solid.last - solid.first);
        rim(solid.last, touched.last);
    }
}

} // namespace vantry
