#include "render/TileMap.h"

#include <algorithm>

namespace vantry {

TileMap::TileMap(int width, int height)
    : m_width(width)
    , m_height(height)
    , m_columns((width + tileSize - 1) / tileSize)
    , m_rows((height + tileSize - 1) / tileSize)
    , m_tiles(static_cast<std::size_t>(m_columns) * m_rows)
{
}

void TileMap::mark(const FrameRect& rect)
{
    const auto area = rect.intersected({ 0, 0, m_width, m_height });
    if (area.empty())
        return;
    for (int row = area.top / tileSize; row <= (area.bottom - 1) / tileSize; ++row) {
        const auto first = m_tiles.begin() + static_cast<std::ptrdiff_t>(row) * m_columns;
        std::fill(first + area.left / tileSize, first + (area.right - 1) / tileSize + 1, std::uint8_t{ 1 });
    }
}

void TileMap::markAll()
{
    std::fill(m_tiles.begin(), m_tiles.end(), std::uint8_t{ 1 });
}

void TileMap::clear()
{
    std::fill(m_tiles.begin(), m_tiles.end(), std::uint8_t{ 0 });
}

void TileMap::add(const TileMap& other)
{
    std::transform(m_tiles.begin(), m_tiles.end(), other.m_tiles.begin(), m_tiles.begin(), [](auto a, auto b) { return a | b; });
}

bool TileMap::empty() const
{
    return std::find(m_tiles.begin(), m_tiles.end(), 1) == m_tiles.end();
}

std::vector<FrameRect> TileMap::runs(int row) const
{
    const auto* tiles = m_tiles.data() + static_cast<std::size_t>(row) * m_columns;
    const int top = row * tileSize;
    const int bottom = std::min(top + tileSize, m_height);
    std::vector<FrameRect> runs;
    for (int column = 0; column < m_columns; ++column) {
        if (!tiles[column])
            continue;
        const int first = column;
        while (column < m_columns && tiles[column])
            ++column;
        runs.push_back({ first * tileSize, top, std::min(column * tileSize, m_width), bottom });
    }
    return runs;
}

std::vector<FrameRect> TileMap::rects() const
{
    const auto sameColumns = [](const FrameRect& a, const FrameRect& b) { return a.left == b.left && a.right == b.right; };
    std::vector<FrameRect> rects;
    std::ptrdiff_t above = 0; // From here on the rectangles end where the current row begins.
    for (int row = 0; row < m_rows; ++row) {
        const auto current = runs(row);
        if (std::equal(rects.begin() + above, rects.end(), current.begin(), current.end(), sameColumns)) {
            std::for_each(rects.begin() + above, rects.end(), [&](FrameRect& rect) { rect.bottom = current.front().bottom; });
        } else {
            above = std::ssize(rects);
            rects.insert(rects.end(), current.begin(), current.end());
        }
    }
    return rects;
}

} // namespace vantry
