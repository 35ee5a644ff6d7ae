#pragma once

#include <algorithm>
#include <cmath>

namespace vantry {

/// A rectangle in doubles. Which way `y` grows is said where one is used.
struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    double right() const { return x + width; }
    double bottom() const { return y + height; } ///< The far edge in the direction in which y grows.
    double midX() const { return x + width / 2; }
    double midY() const { return y + height / 2; }

    bool operator==(const Rect&) const = default;
};

/// The same area on the chroma planes.
inline Rect halved(const Rect& rect)
{
    return { rect.x / 2, rect.y / 2, rect.width / 2, rect.height / 2 };
}

/// Something can be drawn there: finite, and at least a pixel in both directions.
inline bool isDrawable(const Rect& rect)
{
    return std::isfinite(rect.x) && std::isfinite(rect.y) && std::isfinite(rect.width) && std::isfinite(rect.height)
        && rect.width >= 1 && rect.height >= 1;
}

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
};

/// Whole pixels, y downwards: from `left` and `top` up to, not including, `right` and `bottom`.
struct FrameRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    bool empty() const { return left >= right || top >= bottom; }
    int width() const { return right - left; }
    int height() const { return bottom - top; }

    FrameRect intersected(const FrameRect& other) const
    {
        return { std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom) };
    }

    /// The same area on the chroma planes; the edges must be even.
    FrameRect halved() const { return { left / 2, top / 2, right / 2, bottom / 2 }; }

    bool operator==(const FrameRect&) const = default;
};

/// The smallest rectangle with even edges, inside the frame, that holds `rect` (y downwards) grown by `margin`.
inline FrameRect evenBounds(const Rect& rect, double margin, const FrameRect& frame)
{
    const auto down = [](double value) { return static_cast<int>(std::floor(value / 2)) * 2; };
    const auto up = [](double value) { return static_cast<int>(std::ceil(value / 2)) * 2; };
    const double limit = 1 << 20; // Far outside of every frame, and safe to convert.
    const auto safe = [limit](double value) { return std::clamp(value, -limit, limit); };
    return FrameRect{ down(safe(rect.x - margin)), down(safe(rect.y - margin)), up(safe(rect.right() + margin)),
        up(safe(rect.bottom() + margin)) }
        .intersected(frame);
}

} // namespace vantry
