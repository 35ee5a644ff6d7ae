#include "render/ScreenLayer.h"

#include "render/PictureDifference.h"
#include "render/Renderer.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace vantry {

namespace {

// Red 0.06, green 0.06, blue 0.08.
constexpr std::uint8_t background[] = { 29, 130, 128 };

} // namespace

ScreenLayer::ScreenLayer(int width, int height, std::optional<CropRect> crop)
    : m_width(width)
    , m_height(height)
    , m_crop(crop)
    , m_scaled(width, height)
{
    m_scaled.fill(background[PlaneY], background[PlaneCb], background[PlaneCr]);
}

void ScreenLayer::update(const Picture& screen, TileMap& changed)
{
    if (screen == m_screen)
        return;
    const bool sameSize = m_screen.width() == screen.width() && m_screen.height() == screen.height();
    const Picture before = std::exchange(m_screen, screen);
    if (!sameSize) {
        lay(screen);
        changed.markAll();
    } else if (m_whole) {
        m_whole = screen;
        changed.markAll();
    } else {
        markDifferences(before, screen, changed);
    }
}

void ScreenLayer::lay(const Picture& screen)
{
    const Size size{ static_cast<double>(screen.width()), static_cast<double>(screen.height()) };
    const auto source = Renderer::cropped(size, m_crop);
    m_whole = Picture();
    m_luma.reset();
    m_scaled.fill(background[PlaneY], background[PlaneCb], background[PlaneCr]);
    if (!isDrawable(source))
        return;
    m_destination =
        Renderer::fitted({ source.width, source.height }, { static_cast<double>(m_width), static_cast<double>(m_height) });
    if (source == Rect{ 0, 0, size.width, size.height } && screen.width() == m_width && screen.height() == m_height) {
        m_whole = screen;
        return;
    }
    m_area = evenBounds(m_destination, 0, { 0, 0, m_width, m_height });
    m_luma.emplace(source, m_destination, m_area, screen.width(), screen.height());
    m_chroma.emplace(
        halved(source), halved(m_destination), m_area.halved(), screen.plane(PlaneCb).width, screen.plane(PlaneCb).height);
    scale(screen, m_area);
}

void ScreenLayer::scale(const Picture& screen, const FrameRect& area)
{
    m_luma->scale(screen.plane(PlaneY), m_scaled.plane(PlaneY), 0, 0, area);
    m_chroma->scale(screen.plane(PlaneCb), m_scaled.plane(PlaneCb), 0, 0, area.halved());
    m_chroma->scale(screen.plane(PlaneCr), m_scaled.plane(PlaneCr), 0, 0, area.halved());
    blendEdges(PlaneY, area);
    blendEdges(PlaneCb, area.halved());
    blendEdges(PlaneCr, area.halved());
}

/// The outermost samples that the fitted screen covers only in part show the background through.
void ScreenLayer::blendEdges(int index, const FrameRect& area)
{
    const auto rect = index == PlaneY ? m_destination : halved(m_destination);
    const auto plane = m_scaled.plane(index);
    const auto covered = [](int sample, double from, double to) {
        return std::clamp(std::min(sample + 1.0, to) - std::max<double>(sample, from), 0.0, 1.0);
    };
    const auto mix = [&](int x, int y, double amount) {
        auto& sample = plane.row(y)[x];
        sample = static_cast<std::uint8_t>(std::lround(background[index] + amount * (sample - background[index])));
    };
    for (int y = area.top; y < area.bottom; ++y) {
        const double row = covered(y, rect.y, rect.bottom());
        for (int x = area.left; x < area.right; ++x) {
            const double amount = row * covered(x, rect.x, rect.right());
            if (amount < 1)
                mix(x, y, amount);
            else if (row == 1)
                x = std::max(x, std::min(area.right, static_cast<int>(rect.right())) - 1); // All inside up to the right edge.
        }
    }
}

void ScreenLayer::markDifferences(const Picture& before, const Picture& now, TileMap& changed)
{
    if (!m_luma)
        return;
    TileMap source(now.width(), now.height());
    markDifferentTiles(before, now, source);
    TileMap destination(m_width, m_height);
    for (const auto& rect : source.rects()) {
        // A chroma sample reaches further than a luma sample does.
        const auto luma = m_luma->affected(rect);
        const auto chroma = m_chroma->affected({ rect.left / 2, rect.top / 2, (rect.right + 1) / 2, (rect.bottom + 1) / 2 });
        destination.mark({ std::min(luma.left, chroma.left * 2), std::min(luma.top, chroma.top * 2),
            std::max(luma.right, chroma.right * 2), std::max(luma.bottom, chroma.bottom * 2) });
    }
    for (const auto& rect : destination.rects()) {
        const auto area = rect.intersected(m_area);
        if (!area.empty())
            scale(now, area);
    }
    changed.add(destination);
}

void ScreenLayer::draw(PictureBuffer& frame, const FrameRect& area) const
{
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto part = index == PlaneY ? area : area.halved();
        const auto source = m_whole ? m_whole.plane(index) : m_scaled.plane(index);
        const auto target = frame.plane(index);
        for (int y = part.top; y < part.bottom; ++y)
            std::memcpy(target.row(y) + part.left, source.row(y) + part.left, static_cast<std::size_t>(part.width()));
    }
}

} // namespace vantry
