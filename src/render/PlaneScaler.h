#pragma once

#include "media/Picture.h"
#include "render/AxisMap.h"
#include "render/Geometry.h"

#include <vector>

namespace vantry {

/// Scales a part of one plane onto a part of another, at any fraction of a sample. Areas of the destination can be made one by one;
/// they come out as if everything had been made at once. One thread at a time.
class PlaneScaler {
public:
    PlaneScaler() = default;

    /// `source` of a plane of `sourceSize` samples lands on `destination`, of which only `area` is ever asked for. All in samples
    /// of the planes, y downwards.
    PlaneScaler(const Rect& source, const Rect& destination, const FrameRect& area, int sourceWidth, int sourceHeight);

    /// Makes `area` of the destination, whose sample (`originX`, `originY`) is the first one of `out`.
    void scale(const Plane& in, const MutablePlane& out, int originX, int originY, const FrameRect& area);

    /// The part of the destination that depends on `area` of the source.
    FrameRect affected(const FrameRect& area) const;

    bool isCopy() const { return m_columns.isCopy() && m_rows.isCopy(); }

private:
    AxisMap m_columns;
    AxisMap m_rows;
    std::vector<std::int16_t> m_line; ///< One row between the two passes.
};

} // namespace vantry
