#include "render/PlaneScaler.h"

#include "render/ScaleKernels.h"

#include <cstring>

namespace vantry {

PlaneScaler::PlaneScaler(const Rect& source, const Rect& destination, const FrameRect& area, int sourceWidth, int sourceHeight)
    : m_columns({ source.x, source.width, destination.x, destination.width }, area.left, area.right, sourceWidth)
    , m_rows({ source.y, source.height, destination.y, destination.height }, area.top, area.bottom, sourceHeight)
    , m_line(static_cast<std::size_t>(sourceWidth + m_columns.paddedTaps()))
{
}

void PlaneScaler::scale(const Plane& in, const MutablePlane& out, int originX, int originY, const FrameRect& wanted)
{
    const auto area = wanted.intersected({ m_columns.first(), m_rows.first(), m_columns.last(), m_rows.last() });
    if (area.empty())
        return;
    const int firstColumn = m_columns.start(area.left);
    const int columns = m_columns.start(area.right - 1) + m_columns.taps() - firstColumn;
    const auto width = static_cast<std::size_t>(area.width());

    if (isCopy()) {
        for (int y = area.top; y < area.bottom; ++y)
            std::memcpy(out.row(y - originY) + area.left - originX, in.row(m_rows.start(y)) + firstColumn, width);
        return;
    }
    const auto& kernels = scaleKernels();
    std::vector<const std::uint8_t*> rows(static_cast<std::size_t>(m_rows.taps()));
    for (int y = area.top; y < area.bottom; ++y) {
        for (int t = 0; t < m_rows.taps(); ++t)
            rows[static_cast<std::size_t>(t)] = in.row(m_rows.start(y) + t) + firstColumn;
        kernels.vertical(m_line.data() + firstColumn, rows.data(), m_rows.weights(y), m_rows.taps(), columns);
        kernels.horizontal(out.row(y - originY) + area.left - originX, m_line.data(), m_columns.starts(area.left),
            m_columns.weights(area.left), m_columns.paddedTaps(), area.width());
    }
}

FrameRect PlaneScaler::affected(const FrameRect& area) const
{
    const auto columns = m_columns.affected(area.left, area.right);
    const auto rows = m_rows.affected(area.top, area.bottom);
    return { columns.first, rows.first, columns.last, rows.last };
}

} // namespace vantry
