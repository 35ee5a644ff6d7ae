#pragma once

#include <algorithm>

namespace vantry {

/// Whole pixels; the origin is at the top left.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PixelRect&) const = default;

    int right() const { return x + width; }
    int bottom() const { return y + height; }
    bool isEmpty() const { return width <= 0 || height <= 0; }
    PixelRect moved(int dx, int dy) const { return { x + dx, y + dy, width, height }; }

    PixelRect common(const PixelRect& other) const
    {
        const int left = std::max(x, other.x), top = std::max(y, other.y);
        const int commonWidth = std::min(right(), other.right()) - left, commonHeight = std::min(bottom(), other.bottom()) - top;
        return { left, top, std::max(0, commonWidth), std::max(0, commonHeight) };
    }

    bool touches(const PixelRect& other) const { return !common(other).isEmpty(); }
    bool contains(const PixelRect& other) const { return common(other) == other; }
};

} // namespace vantry
