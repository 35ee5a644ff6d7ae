#include "media/RgbToYuv.h"

#include "support/TestSamples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace vantry {

namespace {

/// Pixels with corner colours, greys and noise, in rows that are longer than they look.
class Material {
public:
    Material(int width, int height, unsigned seed)
        : m_width(width)
        , m_height(height)
        , m_bytes(static_cast<std::size_t>(stride() * height))
    {
        std::mt19937 random(seed);
        for (std::size_t i = 0; i < m_bytes.size(); i += 4) {
            const auto value = random();
            const auto pixel = i % 3 == 0 ? value : i % 3 == 1 ? (value & 0x01010101u) * 255u : (value & 0xFFu) * 0x01010101u;
            for (unsigned channel = 0; channel < 4; ++channel)
                m_bytes[i + channel] = static_cast<std::uint8_t>(pixel >> (8 * channel));
        }
    }

    RgbPixels pixels() const { return { m_bytes.data(), stride(), m_width, m_height }; }
    const std::uint8_t* at(int x, int y) const { return m_bytes.data() + y * stride() + 4 * x; }

private:
    std::ptrdiff_t stride() const { return 4 * (m_width + 3); }

    int m_width;
    int m_height;
    std::vector<std::uint8_t> m_bytes;
};

struct Yuv {
    double y, cb, cr;
};

Yuv formula(double blue, double green, double red)
{
    const double y = 0.2126 * red + 0.7152 * green + 0.0722 * blue;
    return { 16 + 219 * y / 255, 128 + 224 * (blue - y) / 1.8556 / 255, 128 + 224 * (red - y) / 1.5748 / 255 };
}

void expectFormula(const Material& material, const Picture& picture, int left, int top)
{
    const auto size = material.pixels();
    double worst = 0;
    for (int y = 0; y < size.height; y += 2) {
        for (int x = 0; x < size.width; x += 2) {
            double sum[3]{};
            for (int i = 0; i < 4; ++i) {
                const auto* pixel = material.at(x + i % 2, y + i / 2);
                const double luma = picture.plane(PlaneY).row(top + y + i / 2)[left + x + i % 2];
                worst = std::max(worst, std::abs(luma - formula(pixel[0], pixel[1], pixel[2]).y));
                for (int channel = 0; channel < 3; ++channel)
                    sum[channel] += pixel[channel] / 4.0;
            }
            const auto mean = formula(sum[0], sum[1], sum[2]);
            worst = std::max(worst, std::abs(picture.plane(PlaneCb).row((top + y) / 2)[(left + x) / 2] - mean.cb));
            worst = std::max(worst, std::abs(picture.plane(PlaneCr).row((top + y) / 2)[(left + x) / 2] - mean.cr));
        }
    }
    EXPECT_LT(worst, 0.51);
}

Picture drawn(const Material& material, int x, int y, Arithmetic arithmetic)
{
    PictureBuffer buffer(320, 90);
    buffer.fill(1, 2, 3);
    EXPECT_TRUE(drawRgb(material.pixels(), buffer, x, y, arithmetic));
    return std::move(buffer).share();
}

} // namespace

TEST(RgbToYuv, followsTheFormulaWithinItsRectangleWhicheverWayItComputes)
{
    for (const int width : { 2, 30, 32, 34, 128, 250 }) {
        const Material material(width, 64, static_cast<unsigned>(width));
        const auto portable = drawn(material, 10, 4, Arithmetic::Portable);
        expectFormula(material, portable, 10, 4);
        const auto isOutside = [=](int x, int y) { return x < 10 || x >= 10 + width || y < 4 || y >= 4 + 64; };
        for (int y = 0; y < 90; ++y)
            for (int x = 0; x < 320; ++x)
                if (isOutside(x, y)) {
                    ASSERT_EQ(portable.plane(PlaneY).row(y)[x], 1) << x << ',' << y;
                    ASSERT_EQ(portable.plane(PlaneCb).row(y / 2)[x / 2], 2) << x << ',' << y;
                    ASSERT_EQ(portable.plane(PlaneCr).row(y / 2)[x / 2], 3) << x << ',' << y;
                }
        EXPECT_TRUE(test::samePixels(portable, drawn(material, 10, 4, fastestArithmetic()))) << width;
    }
}

TEST(RgbToYuv, tellsWhetherAnySampleChanged)
{
    Material before(250, 2, 1);
    for (const auto arithmetic : { Arithmetic::Portable, fastestArithmetic() }) {
        PictureBuffer buffer(250, 2);
        buffer.fill(1, 2, 3);
        EXPECT_TRUE(drawRgb(before.pixels(), buffer, 0, 0, arithmetic));
        EXPECT_FALSE(drawRgb(before.pixels(), buffer, 0, 0, arithmetic));
        for (const int x : { 0, 37, 223, 224, 249 }) {
            buffer.plane(PlaneY).row(1)[x] ^= 1;
            EXPECT_TRUE(drawRgb(before.pixels(), buffer, 0, 0, arithmetic)) << x;
            buffer.plane(PlaneCr).row(0)[x / 2] ^= 0x80;
            EXPECT_TRUE(drawRgb(before.pixels(), buffer, 0, 0, arithmetic)) << x;
        }
    }
}

} // namespace vantry
