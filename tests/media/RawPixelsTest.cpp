#include "media/RawPixels.h"

#include "base/AppError.h"
#include "desktop/CameraPattern.h"
#include "media/JpegDecoder.h"
#include "media/Picture.h"
#include "support/Command.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace vantry {

namespace {

constexpr int width = 64;
constexpr int height = 36;

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

/// Two pixels by two, away from edges between colours.
void expectPattern(const Picture& picture, const CameraPattern& pattern, double tolerance)
{
    for (int y = 1; y < picture.height() / 2 - 1; ++y) {
        for (int x = 0; x < picture.width() / 2; ++x) {
            const auto colour = pattern.at(2 * x, 2 * y);
            const auto expected = encode({ colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0 }, {});
            ASSERT_NEAR(picture.plane(PlaneY).row(2 * y)[2 * x], expected.y, tolerance) << x << ',' << y;
            const auto below = pattern.at(2 * x, 2 * y + 1);
            if (below.red != colour.red || below.green != colour.green || below.blue != colour.blue)
                continue;
            ASSERT_NEAR(picture.plane(PlaneCb).row(y)[x], expected.cb, tolerance) << x << ',' << y;
            ASSERT_NEAR(picture.plane(PlaneCr).row(y)[x], expected.cr, tolerance) << x << ',' << y;
        }
    }
}

/// Rows of `rowBytes`, put `stride` bytes apart.
std::vector<std::uint8_t> spread(const std::vector<std::byte>& tight, std::size_t rowBytes, std::size_t stride)
{
    std::vector<std::uint8_t> padded(tight.size() / rowBytes * stride, 0xAA);
    for (std::size_t i = 0; i < tight.size(); ++i)
        padded[i / rowBytes * stride + i % rowBytes] = static_cast<std::uint8_t>(tight[i]);
    return padded;
}

} // namespace

TEST(RawPixels, everyLayoutIsReadWithItsStride)
{
    const CameraPattern pattern({ width, height }, 7);
    const auto draw = [&](RawPixels::Layout layout, std::size_t bytes, std::size_t rowBytes, auto write) {
        std::vector<std::byte> tight(bytes);
        (pattern.*write)(tight.data());
        const std::size_t stride = rowBytes + 24;
        const auto padded = spread(tight, rowBytes, stride);
        const RawPixels::Plane first{ padded.data(), static_cast<std::ptrdiff_t>(stride) };
        // In the formats with planes, chroma has as many bytes in a row as luma (NV12), or two rows of it have (I420, read tight).
        const RawPixels::Plane second{ first.row(height), first.stride };
        PictureBuffer picture(width, height);
        drawRaw({ .layout = layout, .colours = {}, .planes = { first, second, {} } }, picture);
        expectPattern(std::move(picture).share(), pattern, 1);
    };
    draw(RawPixels::Layout::Yuy2, 2 * width * height, 2 * width, &CameraPattern::writeYuy2);
    draw(RawPixels::Layout::Nv12, width * height * 3 / 2, width, &CameraPattern::writeNv12);
    draw(RawPixels::Layout::Bgrx, 4 * width * height, 4 * width, &CameraPattern::writeBgrx);

    std::vector<std::byte> planes(width * height * 3 / 2);
    pattern.writeI420(planes.data());
    const auto* data = reinterpret_cast<const std::uint8_t*>(planes.data());
    PictureBuffer picture(width, height);
    drawRaw(
        { .layout = RawPixels::Layout::I420,
            .colours = {},
            .planes = { { { data, width }, { data + width * height, width / 2 }, { data + width * height * 5 / 4, width / 2 } } } },
        picture);
    expectPattern(std::move(picture).share(), pattern, 1);
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
