#pragma once

#include "platform/PixelRect.h"

#include <vector>

namespace vantry {

/// Collects which parts of a picture changed and gives them back as a few rectangles that do not overlap and have even edges, so
/// that each can be read and converted on its own. It counts in tiles: a little more than what changed is cheaper than many small
/// pieces.
class ChangedTiles {
public:
    /// The picture's size, which is even.
    ChangedTiles(int width, int height);

    void add(const PixelRect&);
    void addAll() { add({ 0, 0, m_width, m_height }); }
    void clear();

    /// At most `maximumRectangles`, from the top to the bottom.
    std::vector<PixelRect> rectangles() const;

    static constexpr int maximumRectangles = 24;

private:
    using Row = std::vector<bool>;
    struct Grid {
        int tile; ///< Its width and height in pixels.
        std::vector<Row> rows;
    };

    static Grid coarser(const Grid&);
    std::vector<PixelRect> rectanglesOf(const Grid&) const;

    int m_width;
    int m_height;
    Grid m_grid;
};

} // namespace vantry
