#pragma once

#include "render/Geometry.h"

#include <cstdint>
#include <vector>

namespace vantry {

/// Which parts of a frame changed, in tiles.
class TileMap {
public:
    static constexpr int tileSize = 32; ///< Pixels; even, so that a tile is whole on the chroma planes too.

    TileMap() = default;

    /// For a frame of `width` by `height` pixels; nothing is marked.
    TileMap(int width, int height);

    void mark(const FrameRect& rect);
    void markAll();
    void markTile(int column, int row) { m_tiles[static_cast<std::size_t>(row) * m_columns + column] = 1; }
    void clear();

    /// Marks what is marked in `other`, a map of the same frame.
    void add(const TileMap& other);

    bool empty() const;
    int columns() const { return m_columns; }
    int rows() const { return m_rows; }

    /// The marked tiles as few rectangles with even edges that do not overlap.
    std::vector<FrameRect> rects() const;

private:
    std::vector<FrameRect> runs(int row) const;

    int m_width = 0;
    int m_height = 0;
    int m_columns = 0;
    int m_rows = 0;
    std::vector<std::uint8_t> m_tiles;
};

} // namespace vantry
