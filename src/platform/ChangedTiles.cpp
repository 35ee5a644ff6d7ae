#include "platform/ChangedTiles.h"

namespace vantry {

namespace {

constexpr int tileSize = 32;

int tiles(int pixels)
{
    return (pixels + tileSize - 1) / tileSize;
}

} // namespace

ChangedTiles::ChangedTiles(int width, int height)
    : m_width(width)
    , m_height(height)
    , m_grid{ tileSize, std::vector<Row>(static_cast<std::size_t>(tiles(height)), Row(static_cast<std::size_t>(tiles(width)))) }
{
}

void ChangedTiles::add(const PixelRect& rect)
{
    const auto inside = rect.common({ 0, 0, m_width, m_height });
    if (inside.isEmpty())
        return;
    for (int row = inside.y / tileSize; row < tiles(inside.bottom()); ++row) {
        auto& cells = m_grid.rows[static_cast<std::size_t>(row)];
        std::fill(cells.begin() + inside.x / tileSize, cells.begin() + tiles(inside.right()), true);
    }
}

void ChangedTiles::clear()
{
    for (auto& row : m_grid.rows)
        std::fill(row.begin(), row.end(), false);
}

std::vector<PixelRect> ChangedTiles::rectangles() const
{
    auto found = rectanglesOf(m_grid);
    if (found.size() <= maximumRectangles)
        return found;
    auto grid = coarser(m_grid);
    while ((found = rectanglesOf(grid)).size() > maximumRectangles)
        grid = coarser(grid);
    return found;
}

/// Four tiles become one. In the end one tile is left, so there is always a grid that is coarse enough.
ChangedTiles::Grid ChangedTiles::coarser(const Grid& grid)
{
    Grid result{ grid.tile * 2, std::vector<Row>((grid.rows.size() + 1) / 2, Row((grid.rows[0].size() + 1) / 2)) };
    for (std::size_t y = 0; y < grid.rows.size(); ++y)
        for (std::size_t x = 0; x < grid.rows[y].size(); ++x)
            if (grid.rows[y][x])
                result.rows[y / 2][x / 2] = true;
    return result;
}

/// Runs of tiles in a row, each of which continues the same run of the row above where there is one.
std::vector<PixelRect> ChangedTiles::rectanglesOf(const Grid& grid) const
{
    std::vector<PixelRect> found;
    for (std::size_t y = 0; y < grid.rows.size(); ++y) {
        const auto& row = grid.rows[y];
        const int top = static_cast<int>(y) * grid.tile;
        for (auto run = std::find(row.begin(), row.end(), true); run != row.end();) {
            const auto end = std::find(run, row.end(), false);
            const int left = static_cast<int>(run - row.begin()) * grid.tile,
                      right = static_cast<int>(end - row.begin()) * grid.tile;
            const auto above = std::find_if(found.begin(), found.end(),
                [&](const PixelRect& rect) { return rect.bottom() == top && rect.x == left && rect.right() == right; });
            if (above != found.end())
                above->height += grid.tile;
            else
                found.push_back({ left, top, right - left, grid.tile });
            run = std::find(end, row.end(), true);
        }
    }
    for (auto& rect : found)
        rect = rect.common({ 0, 0, m_width, m_height });
    return found;
}

} // namespace vantry
