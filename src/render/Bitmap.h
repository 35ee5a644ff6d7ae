#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace vantry {

/// A picture with transparency: 32 bits a pixel, in memory blue, green, red, alpha, premultiplied, sRGB, rows from the top and
/// tight. Immutable and shared.
class Bitmap {
public:
    Bitmap() = default;
    Bitmap(int width, int height, std::vector<std::uint8_t> bytes)
        : m_width(width)
        , m_height(height)
        , m_bytes(std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes)))
    {
    }

    int width() const { return m_width; }
    int height() const { return m_height; }
    std::int64_t pixels() const { return std::int64_t(m_width) * m_height; }
    const std::uint8_t* row(int y) const { return m_bytes->data() + static_cast<std::size_t>(y) * m_width * 4; }

private:
    int m_width = 0;
    int m_height = 0;
    std::shared_ptr<const std::vector<std::uint8_t>> m_bytes;
};

} // namespace vantry
