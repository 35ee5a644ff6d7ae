#include "model/AreaPixels.h"

#include <algorithm>
#include <cmath>

namespace vantry {

namespace {

int even(int value)
{
    return value & ~1;
}

int nearestEven(double value)
{
    return 2 * static_cast<int>(std::lround(value / 2));
}

/// More than a twentieth: what a drag has to exceed to count as one.
int least(int size)
{
    return std::min(even(size / 20) + 2, even(size));
}

} // namespace

AreaPixels::AreaPixels(int width, int height)
    : m_width(std::max(width, 2))
    , m_height(std::max(height, 2))
    , m_leastWidth(least(m_width))
    , m_leastHeight(least(m_height))
{
}

int AreaPixels::heightOf(int width)
{
    return nearestEven(width * 9.0 / 16);
}

int AreaPixels::widthOf(int height)
{
    return nearestEven(height * 16.0 / 9);
}

PixelRect AreaPixels::snapped(const CropRect& crop) const
{
    const auto pixel = [](double fraction, int size) {
        return static_cast<int>(std::lround(std::clamp(fraction, 0.0, 1.0) * size));
    };
    const int left = pixel(crop.x, m_width), top = pixel(crop.y, m_height);
    const int right = pixel(crop.x + crop.width, m_width), bottom = pixel(crop.y + crop.height, m_height);
    return sized({ left, top, 0, 0 }, right - left, bottom - top);
}

CropRect AreaPixels::fractions(const PixelRect& area) const
{
    const auto width = static_cast<double>(m_width), height = static_cast<double>(m_height);
    return { area.x / width, area.y / height, area.width / width, area.height / height };
}

PixelRect AreaPixels::moved(const PixelRect& area, int dx, int dy) const
{
    const int x = std::clamp(area.x + dx, 0, std::max(0, m_width - area.width));
    const int y = std::clamp(area.y + dy, 0, std::max(0, m_height - area.height));
    return sized({ x, y, 0, 0 }, area.width, area.height);
}

PixelRect AreaPixels::sized(const PixelRect& area, int width, int height) const
{
    width = even(std::clamp(width, m_leastWidth, m_width));
    height = even(std::clamp(height, m_leastHeight, m_height));
    return { std::clamp(area.x, 0, m_width - width), std::clamp(area.y, 0, m_height - height), width, height };
}

PixelRect AreaPixels::resized(const PixelRect& area, AreaEdges edges, int dx, int dy, AreaShape shape) const
{
    const int wantedWidth = area.width + (edges.right ? dx : edges.left ? -dx : 0);
    const int wantedHeight = area.height + (edges.bottom ? dy : edges.top ? -dy : 0);
    if (shape == AreaShape::Wide) {
        const bool sideways = edges.left || edges.right, upright = edges.top || edges.bottom;
        const int byHeight = widthOf(std::max(wantedHeight, 0));
        return wide(area, edges, !upright ? wantedWidth : !sideways ? byHeight : std::max(wantedWidth, byHeight));
    }
    const int roomAcross = edges.left ? area.right() : m_width - area.x, roomDown = edges.top ? area.bottom() : m_height - area.y;
    const int width = even(std::clamp(wantedWidth, std::min(m_leastWidth, roomAcross), roomAcross));
    const int height = even(std::clamp(wantedHeight, std::min(m_leastHeight, roomDown), roomDown));
    return { edges.left ? area.right() - width : area.x, edges.top ? area.bottom() - height : area.y, width, height };
}

PixelRect AreaPixels::widened(const PixelRect& area, AreaEdges edges) const
{
    return wide(area, edges, std::max(area.width, widthOf(area.height)));
}

/// Where there is no room for the smallest one, it moves.
PixelRect AreaPixels::wide(const PixelRect& area, AreaEdges edges, int width) const
{
    const int roomAcross = edges.left ? area.right() : m_width - area.x, roomDown = edges.top ? area.bottom() : m_height - area.y;
    const int leastWidth = std::min(std::max(m_leastWidth, widthOf(m_leastHeight) + 2), even(m_width));
    const int across = std::max(even(std::min({ width, roomAcross, widthOf(roomDown) })), leastWidth);
    const int down = std::min(heightOf(across), even(std::max(roomDown, heightOf(leastWidth))));
    return sized({ edges.left ? area.right() - across : area.x, edges.top ? area.bottom() - down : area.y, 0, 0 }, across, down);
}

} // namespace vantry
