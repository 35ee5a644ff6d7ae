#include "render/PersonFinder.h"

#include <algorithm>
#include <cstdint>

namespace vantry {

namespace {

/// The samples that a cell covers; at least one.
struct Cell {
    Cell(int index, int cells, int samples)
        : first(index * samples / cells)
        , last(std::max((index + 1) * samples / cells, first + 1))
    {
    }

    int first;
    int last; ///< The one behind.
};

/// Each cell of `to`, `width` by `height`, becomes the mean of what it covers of the plane. `columns` is room to add up in.
void average(const Plane& plane, std::vector<float>& to, int width, int height, std::vector<int>& columns)
{
    to.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    columns.resize(static_cast<std::size_t>(plane.width));
    float* out = to.data();
    for (int y = 0; y < height; ++y) {
        const Cell rows(y, height, plane.height);
        std::ranges::fill(columns, 0);
        int* sums = columns.data();
        for (int row = rows.first; row < rows.last; ++row) {
            const std::uint8_t* samples = plane.row(row);
            for (int x = 0; x < plane.width; ++x)
                sums[x] += samples[x];
        }
        for (int x = 0; x < width; ++x) {
            const Cell across(x, width, plane.width);
            int sum = 0;
            for (int column = across.first; column < across.last; ++column)
                sum += sums[column];
            *out++ = static_cast<float>(sum) / static_cast<float>((rows.last - rows.first) * (across.last - across.first));
        }
    }
}

float unit(float value)
{
    return std::clamp(value, 0.0F, 1.0F);
}

} // namespace

PersonFinder::PersonFinder(std::span<const std::byte> networkFile)
    : m_network(networkFile)
    , m_mask{ m_network.width(), m_network.height(), std::vector<Weight>(m_network.mask().size()) }
{
}

const SoftMask& PersonFinder::find(const Picture& picture)
{
    showPicture(picture);
    m_network.run();
    std::ranges::transform(m_network.mask(), m_mask.samples.begin(), [](float person) { return toWeight(person); });
    return m_mask;
}

void PersonFinder::showPicture(const Picture& picture)
{
    for (const int index : { PlaneY, PlaneCb, PlaneCr })
        average(picture.plane(index), m_planes[index], m_mask.width, m_mask.height, m_columns);
    // BT.709, limited range.
    constexpr float black = 16;
    constexpr float neutral = 128;
    constexpr float luma = 1 / 219.0F;
    constexpr float chroma = 1 / 224.0F;
    float* rgb = m_network.input().data();
    for (std::size_t i = 0; i < m_planes[PlaneY].size(); ++i) {
        const float y = (m_planes[PlaneY][i] - black) * luma;
        const float cb = (m_planes[PlaneCb][i] - neutral) * chroma;
        const float cr = (m_planes[PlaneCr][i] - neutral) * chroma;
        *rgb++ = unit(y + 1.5748F * cr);
        *rgb++ = unit(y - 0.1873F * cb - 0.4681F * cr);
        *rgb++ = unit(y + 1.8556F * cb);
    }
}

} // namespace vantry
