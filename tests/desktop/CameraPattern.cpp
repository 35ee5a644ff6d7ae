#include "desktop/CameraPattern.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>

namespace vantry {

namespace {

using Color = CameraPattern::Color;
using Bytes = std::vector<std::byte>;

constexpr uint8_t on = 191; // 75 %
constexpr Color bars[] = { { on, on, on }, { on, on, 0 }, { 0, on, on }, { 0, on, 0 }, { on, 0, on }, { on, 0, 0 }, { 0, 0, on },
    {} };
constexpr Color white{ 255, 255, 255 };
constexpr Color black{};

struct Yuv {
    uint8_t y, u, v;
};

Yuv toYuv(Color color)
{
    const double red = color.red / 255.0, green = color.green / 255.0, blue = color.blue / 255.0;
    const double luma = 0.2126 * red + 0.7152 * green + 0.0722 * blue;
    const auto code = [](double value) { return static_cast<uint8_t>(std::lround(value)); };
    return { code(16 + 219 * luma), code(128 + 224 * (blue - luma) / 1.8556), code(128 + 224 * (red - luma) / 1.5748) };
}

void append(Bytes& bytes, std::initializer_list<uint8_t> values)
{
    for (uint8_t value : values)
        bytes.push_back(std::byte{ value });
}

Bytes packedYuy2(const std::vector<Color>& row)
{
    Bytes bytes;
    for (std::size_t x = 0; x < row.size(); x += 2) {
        const Yuv left = toYuv(row[x]);
        append(bytes, { left.y, left.u, toYuv(row[x + 1]).y, left.v });
    }
    return bytes;
}

Bytes lumaOnly(const std::vector<Color>& row)
{
    Bytes bytes;
    for (Color color : row)
        append(bytes, { toYuv(color).y });
    return bytes;
}

Bytes chromaPairs(const std::vector<Color>& row)
{
    Bytes bytes;
    for (std::size_t x = 0; x < row.size(); x += 2)
        append(bytes, { toYuv(row[x]).u, toYuv(row[x]).v });
    return bytes;
}

/// Of every second pixel.
Bytes chromaOnly(const std::vector<Color>& row, uint8_t Yuv::*component)
{
    Bytes bytes;
    for (std::size_t x = 0; x < row.size(); x += 2)
        append(bytes, { toYuv(row[x]).*component });
    return bytes;
}

Bytes packedBgrx(const std::vector<Color>& row)
{
    Bytes bytes;
    for (Color color : row)
        append(bytes, { color.blue, color.green, color.red, 255 });
    return bytes;
}

} // namespace

CameraPattern::CameraPattern(Size size, uint64_t frame)
    : m_size(size)
{
    const auto phase = static_cast<int>(frame % period);
    for (int x = 0; x < size.width; ++x)
        m_plainRow.push_back(phase == 0 ? white : bars[x * std::ssize(bars) / size.width]);
    m_boxRow = m_plainRow;
    if (phase != 0)
        std::fill_n(m_boxRow.begin() + size.width * phase / period, size.width / period, black);
}

bool CameraPattern::isInBoxRow(int y) const
{
    return std::abs(2 * y + 1 - m_size.height) < m_size.height / 8;
}

/// Writes every `step`th row and gives where the next plane begins.
template <typename Encode>
std::byte* CameraPattern::writeRows(std::byte* to, int step, Encode encode) const
{
    const Bytes plain = encode(m_plainRow);
    const Bytes box = encode(m_boxRow);
    for (int y = 0; y < m_size.height; y += step, to += plain.size())
        std::memcpy(to, (isInBoxRow(y) ? box : plain).data(), plain.size());
    return to;
}

void CameraPattern::writeYuy2(std::byte* to) const
{
    writeRows(to, 1, packedYuy2);
}

void CameraPattern::writeNv12(std::byte* to) const
{
    writeRows(writeRows(to, 1, lumaOnly), 2, chromaPairs);
}

void CameraPattern::writeI420(std::byte* to) const
{
    const auto cb = [](const Row& row) { return chromaOnly(row, &Yuv::u); };
    const auto cr = [](const Row& row) { return chromaOnly(row, &Yuv::v); };
    writeRows(writeRows(writeRows(to, 1, lumaOnly), 2, cb), 2, cr);
}

void CameraPattern::writeBgrx(std::byte* to) const
{
    writeRows(to, 1, packedBgrx);
}

} // namespace vantry
