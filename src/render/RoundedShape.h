#pragma once

#include "render/Geometry.h"

namespace vantry {

/// A rectangle with round corners, in the samples of one plane, y downwards. How much of a sample it covers is taken from the
/// distance to its edge, which is exact on straight edges.
class RoundedShape {
public:
    RoundedShape(const Rect& rect, double radius);

    /// How much of the sample (`x`, `y`) is inside: 0 … 1.
    double coverage(int x, int y) const;

    /// Samples of a row, from `first` up to, not including, `last`.
    struct Span {
        int first = 0;
        int last = 0;
    };

    /// All samples of the row `y` that are covered at all; no others need to be looked at.
    Span touched(int y) const { return span(y, 0.5); }

    /// The samples of the row that are wholly inside.
    Span solid(int y) const { return span(y, -0.5); }

private:
    Span span(int y, double distance) const;

    double m_middleX;
    double m_middleY;
    double m_halfWidth; ///< Without the corners' radius.
    double m_halfHeight;
    double m_radius;
};

} // namespace vantry
