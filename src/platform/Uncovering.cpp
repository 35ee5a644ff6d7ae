#include "platform/Uncovering.h"

#include "platform/TranslucentRow.h"

#include <cstring>

namespace vantry {

namespace {

/// Only these have 32 bits a pixel, in the order that we read.
bool isReadable(const TopWindow& window)
{
    return window.depth == 24 || window.depth == 32;
}

enum class Cover { Opaque, Translucent };

/// Only a compositing manager looks at a window's alpha.
Cover coverOf(const TopWindow& window, Composition composition)
{
    return window.depth == 32 && composition == Composition::Delayed ? Cover::Translucent : Cover::Opaque;
}

bool hides(const TopWindow& window, const PixelRect& area, Composition composition)
{
    return !window.excluded && isReadable(window) && coverOf(window, composition) == Cover::Opaque && window.shape.size() == 1
        && window.shape[0].contains(area);
}

void paint(const PixelBlock& source, const PixelBlock& target, const PixelRect& part, Cover cover)
{
    const auto common = part.common(source.area).common(target.area);
    for (int y = common.y; y < common.bottom(); ++y) {
        if (cover == Cover::Translucent)
            drawTranslucentRow(source.at(common.x, y), target.at(common.x, y), common.width);
        else
            std::memcpy(target.at(common.x, y), source.at(common.x, y), 4 * static_cast<std::size_t>(common.width));
    }
}

} // namespace

Uncovering::Uncovering(const xcb::Connection& connection, int largest)
    : m_images(connection, largest)
{
}

void Uncovering::repaint(const PixelBlock& target, const PixelRect& hole, const std::vector<TopWindow>& windows,
    RootBackground& background, Composition composition)
{
    m_target = target;
    m_composition = composition;
    // Nothing is seen of what lies beneath a window that hides the whole hole.
    const auto hiding =
        std::find_if(windows.rbegin(), windows.rend(), [&](const TopWindow& window) { return hides(window, hole, composition); });
    if (hiding == windows.rend())
        request(nullptr, background.paint(hole), hole, 0, 0);
    const auto lowest = hiding == windows.rend() ? windows.begin() : hiding.base() - 1;
    for (auto window = lowest; window != windows.end(); ++window) {
        const auto area = window->frame.common(hole);
        if (!window->excluded && isReadable(*window) && !area.isEmpty())
            request(&*window, window->id, area, window->frame.x + window->border, window->frame.y + window->border);
    }
    paintRequested();
}

void Uncovering::request(const TopWindow* source, xcb_drawable_t drawable, const PixelRect& area, int originX, int originY)
{
    if (!m_images.hasRoomFor(area))
        paintRequested();
    m_sources.push_back(source);
    m_images.request(drawable, area, originX, originY);
}

void Uncovering::paintRequested()
{
    const auto images = m_images.await();
    for (std::size_t i = 0; i < images.size(); ++i) {
        const auto* window = m_sources[i];
        if (!images[i].data)
            continue;
        if (!window)
            paint(images[i], m_target, images[i].area, Cover::Opaque);
        else
            for (const auto& part : window->shape)
                paint(images[i], m_target, part, coverOf(*window, m_composition));
    }
    m_sources.clear();
}

} // namespace vantry
