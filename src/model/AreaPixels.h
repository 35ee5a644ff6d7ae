#pragma once

#include "platform/PixelRect.h"
#include "project/Project.h"

namespace vantry {

/// The sides of an area that a change moves; the others stay.
struct AreaEdges {
    bool left = false;
    bool top = false;
    bool right = false;
    bool bottom = false;
};

enum class AreaShape {
    Free,
    Wide, ///< 16:9, as nearly as even numbers of pixels can have it.
};

/// Arithmetic of the areas that can be chosen on one display: whole pixels, even sizes, within the display, and no smaller than
/// what can be seen. All results are such areas; all rectangles are in the display's pixels.
class AreaPixels {
public:
    /// The display's size. A smaller one than two pixels counts as that.
    AreaPixels(int width, int height);

    int width() const { return m_width; }
    int height() const { return m_height; }
    PixelRect whole() const { return { 0, 0, m_width & ~1, m_height & ~1 }; }

    PixelRect snapped(const CropRect& crop) const;
    CropRect fractions(const PixelRect& area) const;

    PixelRect moved(const PixelRect& area, int dx, int dy) const;

    /// Moves the named sides by this much. In the wide shape the other direction follows.
    PixelRect resized(const PixelRect& area, AreaEdges edges, int dx, int dy, AreaShape shape) const;

    /// Keeps the corner at the top left where there is room for that.
    PixelRect sized(const PixelRect& area, int width, int height) const;

    /// Gives an area the wide shape: as wide as it is, or as wide as its height asks for if that is more. Only the named sides
    /// move.
    PixelRect widened(const PixelRect& area, AreaEdges edges) const;

    /// The even number next to what 16:9 asks for.
    static int heightOf(int width);
    static int widthOf(int height);

private:
    PixelRect wide(const PixelRect& area, AreaEdges edges, int width) const;

    int m_width;
    int m_height;
    int m_leastWidth;
    int m_leastHeight;
};

} // namespace vantry
