#include "media/RawPixels.h"

#include "base/AppError.h"
#include "media/JpegDecoder.h"
#include "media/Picture.h"
#include "support/Command.h"
#include "support/TestSamples.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace vantry {

namespace {

struct Yuv {
    double y, cb, cr;
};

/// By the standards' formulas; colours from 0 to 1.
Yuv encode(const std::array<double, 3>& rgb, YuvColours colours)
{
    const bool isOld = colours.matrix == YuvColours::Matrix::Bt601, isFull = colours.range == YuvColours::Range::Full;
    const double red = isOld ? 0.299 : 0.2126, blue = isOld ? 0.114 : 0.0722;
    const double y = red * rgb[0] + (1 - red - blue) * rgb[1] + blue * rgb[2];
    const double cb = (rgb[2] - y) / (2 * (1 - blue)), cr = (rgb[0] - y) / (2 * (1 - red));
    return isFull ? Yuv{ 255 * y, 128 + 255 * cb, 128 + 255 * cr } : Yuv{ 16 + 219 * y, 128 + 224 * cb, 128 + 224 * cr };
}

std::uint8_t code(double value)
{
    return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0L, 255L));
}

} // namespace

TEST(RawPixels, rowsMayBeLongerThanTheyLook)
{
    constexpr int width = 64, height = 36;
    std::mt19937 random(1);
    const auto draw = [](RawPixels::Layout layout, const std::vector<std::uint8_t>& bytes, std::size_t stride) {
        const RawPixels::Plane first{ bytes.data(), static_cast<std::ptrdiff_t>(stride) };
        const RawPixels::Plane second{ first.row(height), first.stride }; // Of those here, only NV12 has one.
        PictureBuffer picture(width, height);
        drawRaw({ .layout = layout, .colours = {}, .planes = { first, second, {} } }, picture);
        return std::move(picture).share();
    };
    for (const auto& [layout, rows, rowBytes] : { std::tuple(RawPixels::Layout::Yuy2, height, 2 * width),
             { RawPixels::Layout::Nv12, height * 3 / 2, width }, { RawPixels::Layout::Bgrx, height, 4 * width } }) {
        const auto length = static_cast<std::size_t>(rowBytes), stride = length + 24;
        std::vector<std::uint8_t> tight(static_cast<std::size_t>(rows) * length),
            padded(static_cast<std::size_t>(rows) * stride, 0xAA);
        for (std::size_t i = 0; i < tight.size(); ++i)
            tight[i] = padded[i / length * stride + i % length] = static_cast<std::uint8_t>(random());
        EXPECT_TRUE(test::samePixels(draw(layout, tight, length), draw(layout, padded, stride)));
    }
}

TEST(RawPixels, coloursOfAnotherKindMeanTheSameAfterwards)
{
    std::mt19937 random(3);
    std::uniform_real_distribution<double> part(0, 1);
    for (auto matrix : { YuvColours::Matrix::Bt709, YuvColours::Matrix::Bt601 }) {
        for (auto range : { YuvColours::Range::Limited, YuvColours::Range::Full }) {
            for (int i = 0; i < 200; ++i) {
                const std::array<double, 3> rgb{ part(random), part(random), part(random) };
                const auto from = encode(rgb, { matrix, range }), expected = encode(rgb, {});
                PictureBuffer picture(2, 2);
                picture.fill(code(from.y), code(from.cb), code(from.cr));
                convertColours(picture, { matrix, range });
                // Half a level of rounding before, half a level after.
                EXPECT_NEAR(picture.plane(PlaneY).row(1)[1], expected.y, 1.5);
                EXPECT_NEAR(picture.plane(PlaneCb).row(0)[0], expected.cb, 1.5);
                EXPECT_NEAR(picture.plane(PlaneCr).row(0)[0], expected.cr, 1.5);
            }
        }
    }
}

TEST(JpegDecoder, camerasImagesHaveTheirColours)
{
    // Red of three quarters, as the kinds of images that cameras send, and odd sizes.
    for (const auto* format : { "yuvj422p", "yuvj420p", "yuvj444p" }) {
        const auto image = test::runCommand(std::string("ffmpeg -v error -f lavfi -i color=0xBF0000:s=66x37 -frames:v 1 -vf "
                                                        "scale=out_color_matrix=bt601:out_range=full,format=")
            + format + " -strict unofficial -q:v 2 -f mjpeg -");
        JpegDecoder decoder;
        const auto bytes = std::span(reinterpret_cast<const std::uint8_t*>(image.data()), image.size());
        const auto picture = decoder.decode(bytes);
        ASSERT_EQ(picture.width(), 66) << format;
        ASSERT_EQ(picture.height(), 36) << format;
        const auto expected = encode({ 0.75, 0, 0 }, {});
        EXPECT_NEAR(picture.plane(PlaneY).row(20)[30], expected.y, 3) << format;
        EXPECT_NEAR(picture.plane(PlaneCb).row(10)[15], expected.cb, 3) << format;
        EXPECT_NEAR(picture.plane(PlaneCr).row(10)[15], expected.cr, 3) << format;

        EXPECT_THROW(static_cast<void>(decoder.decode(bytes.first(20))), AppError);
        EXPECT_EQ(decoder.decode(bytes).width(), 66) << "after a damaged image";
    }
}

} // namespace vantry
