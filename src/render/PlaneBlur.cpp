#include "render/PlaneBlur.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <utility>

namespace vantry {

namespace {

constexpr int fractionBits = 7; ///< Of samples in between.
constexpr double kernelWidth = 3.5; ///< In standard deviations; what lies beyond is not seen.
constexpr int border = 1;

/// The largest power of two that leaves the small plane something to blur.
int factorFor(double sigma, PlaneBlur::Detail detail)
{
    const double leastSigma = detail == PlaneBlur::Detail::Luma ? 3 : 2.2;
    int factor = 1;
    while (factor < 16 && sigma / (2 * factor) >= leastSigma)
        factor *= 2;
    return factor;
}

/// Making the plane smaller by means and larger by straight lines blurs too: that much is taken off the kernel's variance.
double smallSigma(double sigma, int factor)
{
    const double square = double(factor) * factor;
    const double variance = (sigma * sigma - (square - 1) / 12 - square / 6) / square;
    return std::sqrt(std::max(variance, 0.05));
}

int quotientUp(int a, int b)
{
    return (a + b - 1) / b;
}

Between between(double position, int samples)
{
    const double clamped = std::clamp(position, 0.0, samples - 1.0);
    const int at = std::min(static_cast<int>(clamped), std::max(samples - 2, 0));
    return { at, toWeight(clamped - at) };
}

/// Where the centres of `to` samples lie between those of `from`, which cover the same length.
std::vector<Between> stretched(int from, int to)
{
    std::vector<Between> places;
    places.reserve(static_cast<std::size_t>(to));
    for (int i = 0; i < to; ++i)
        places.push_back(between((i + 0.5) * from / to - 0.5, from));
    return places;
}

/// Where the centres of `to` samples lie between those of a small plane with a border.
std::vector<Between> stretchedBy(int factor, int to, int small)
{
    std::vector<Between> places;
    places.reserve(static_cast<std::size_t>(to));
    for (int i = 0; i < to; ++i)
        places.push_back(between((i + 0.5) / factor - 0.5 + border, small));
    return places;
}

std::size_t area(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

// The pointers of these do not overlap: so they become vector code.

void addTo(std::uint16_t* __restrict sums, const std::uint8_t* __restrict samples, int count)
{
    for (int x = 0; x < count; ++x)
        sums[x] = static_cast<std::uint16_t>(sums[x] + samples[x]);
}

void addWeighted(float* __restrict sums, const float* __restrict a, const float* __restrict b, float weight, int count)
{
    for (int x = 0; x < count; ++x)
        sums[x] += (a[x] + b[x]) * weight;
}

void blend(std::uint8_t* __restrict out, const std::uint8_t* __restrict sharp, const std::int16_t* __restrict above,
    const std::int16_t* __restrict below, Weight down, const Weight* __restrict maskAbove, const Weight* __restrict maskBelow,
    Weight maskDown, int count)
{
    for (int x = 0; x < count; ++x) {
        const std::int16_t blurred = mixed(above[x], below[x], down);
        const Weight person = mixed(maskAbove[x], maskBelow[x], maskDown);
        const std::int16_t sample = mixed(blurred, static_cast<std::int16_t>(sharp[x] << fractionBits), person);
        out[x] = static_cast<std::uint8_t>((sample + (1 << (fractionBits - 1))) >> fractionBits);
    }
}

} // namespace

PlaneBlur::PlaneBlur(Size plane, Detail detail, double sigma, Size mask)
    : m_plane(plane)
    , m_mask(mask)
    , m_factor(factorFor(sigma, detail))
    , m_small{ quotientUp(plane.width, m_factor) + 2 * border, quotientUp(plane.height, m_factor) + 2 * border }
    , m_sums(area(m_small.width, m_factor))
    , m_averages(area(m_small.width, m_small.height))
    , m_blurred(area(m_small.width, m_small.height))
    , m_smallColumns(stretchedBy(m_factor, plane.width, m_small.width))
    , m_smallRows(stretchedBy(m_factor, plane.height, m_small.height))
    , m_maskColumns(stretched(mask.width, plane.width))
    , m_maskRows(stretched(mask.height, plane.height))
    , m_wideMask(area(plane.width, mask.height))
{
    const double kernelSigma = smallSigma(sigma, m_factor);
    m_reach = static_cast<int>(std::ceil(kernelWidth * kernelSigma));
    for (int i = 0; i <= m_reach; ++i)
        m_kernel.push_back(static_cast<float>(std::exp(-0.5 * i * i / (kernelSigma * kernelSigma))));
    const float sum = 2 * std::accumulate(m_kernel.begin(), m_kernel.end(), 0.0F) - m_kernel.front();
    for (float& weight : m_kernel)
        weight /= sum;
    m_line.resize(static_cast<std::size_t>(m_small.width + 2 * m_reach));
    for (WideRow& row : m_wideRows)
        row.samples.resize(static_cast<std::size_t>(plane.width));
}

void PlaneBlur::apply(const Plane& sharp, const SoftMask& mask, const MutablePlane& blurred)
{
    shrink(sharp);
    blurSmall();
    stretchMask(mask);
    for (WideRow& row : m_wideRows)
        row.number = -1;
    for (int row = 0; row < m_plane.height; ++row)
        blendRow(row, sharp, blurred);
}

void PlaneBlur::shrink(const Plane& plane)
{
    const int left = border * m_factor;
    const int right = left + m_plane.width;
    const float scale = 1.0F / static_cast<float>(m_factor * m_factor);
    for (int y = 0; y < m_small.height; ++y) {
        std::ranges::fill(m_sums, std::uint16_t(0));
        for (int i = 0; i < m_factor; ++i)
            addTo(m_sums.data() + left, plane.row(std::clamp((y - border) * m_factor + i, 0, m_plane.height - 1)), m_plane.width);
        std::fill(m_sums.begin(), m_sums.begin() + left, m_sums[static_cast<std::size_t>(left)]);
        std::fill(m_sums.begin() + right, m_sums.end(), m_sums[static_cast<std::size_t>(right - 1)]);
        float* averages = m_averages.data() + area(m_small.width, y);
        const std::uint16_t* sums = m_sums.data();
        for (int x = 0; x < m_small.width; ++x, sums += m_factor)
            averages[x] = static_cast<float>(std::accumulate(sums, sums + m_factor, 0)) * scale;
    }
}

void PlaneBlur::blurSmall()
{
    for (int row = 0; row < m_small.height; ++row) {
        blurDown(row);
        blurAcross(row);
    }
}

/// Into the line.
void PlaneBlur::blurDown(int row)
{
    const auto averages = [this](int number) {
        return m_averages.data() + area(m_small.width, std::clamp(number, 0, m_small.height - 1));
    };
    float* middle = m_line.data() + m_reach;
    std::transform(averages(row), averages(row) + m_small.width, middle, [this](float sample) { return sample * m_kernel[0]; });
    for (int i = 1; i <= m_reach; ++i)
        addWeighted(middle, averages(row - i), averages(row + i), m_kernel[static_cast<std::size_t>(i)], m_small.width);
    std::fill(m_line.begin(), m_line.begin() + m_reach, middle[0]);
    std::fill(m_line.end() - m_reach, m_line.end(), middle[m_small.width - 1]);
}

/// From the line. Block by block, so that the sums stay in registers.
void PlaneBlur::blurAcross(int row)
{
    constexpr int block = 64;
    std::int16_t* out = m_blurred.data() + area(m_small.width, row);
    for (int start = 0; start < m_small.width; start += block) {
        const int count = std::min(block, m_small.width - start);
        const float* samples = m_line.data() + m_reach + start;
        float sums[block];
        for (int x = 0; x < count; ++x)
            sums[x] = samples[x] * m_kernel[0];
        for (int i = 1; i <= m_reach; ++i)
            addWeighted(sums, samples - i, samples + i, m_kernel[static_cast<std::size_t>(i)], count);
        for (int x = 0; x < count; ++x)
            out[start + x] = static_cast<std::int16_t>(sums[x] * (1 << fractionBits) + 0.5F);
    }
}

void PlaneBlur::stretchMask(const SoftMask& mask)
{
    Weight* out = m_wideMask.data();
    for (int y = 0; y < m_mask.height; ++y) {
        const Weight* row = mask.samples.data() + area(m_mask.width, y);
        for (const Between& place : m_maskColumns)
            *out++ = mixed(row[place.at], row[std::min(place.at + 1, m_mask.width - 1)], place.weight);
    }
}

/// A row of the blurred small plane in the plane's width. The two that were asked for last are kept.
const std::int16_t* PlaneBlur::stretchedSmall(int number)
{
    WideRow& row = m_wideRows[number % 2];
    if (std::exchange(row.number, number) == number)
        return row.samples.data();
    const std::int16_t* samples = m_blurred.data() + area(m_small.width, number);
    std::ranges::transform(m_smallColumns, row.samples.begin(),
        [samples](const Between& place) { return mixed(samples[place.at], samples[place.at + 1], place.weight); });
    return row.samples.data();
}

void PlaneBlur::blendRow(int row, const Plane& sharp, const MutablePlane& blurred)
{
    const Between small = m_smallRows[static_cast<std::size_t>(row)];
    const Between mask = m_maskRows[static_cast<std::size_t>(row)];
    const std::int16_t* above = stretchedSmall(small.at);
    const std::int16_t* below = stretchedSmall(small.at + 1);
    const Weight* maskAbove = m_wideMask.data() + area(m_plane.width, mask.at);
    const Weight* maskBelow = m_wideMask.data() + area(m_plane.width, std::min(mask.at + 1, m_mask.height - 1));
    blend(blurred.row(row), sharp.row(row), above, below, small.weight, maskAbove, maskBelow, mask.weight, m_plane.width);
}

} // namespace vantry
