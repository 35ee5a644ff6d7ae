#include "render/PlaneScaler.h"
#include "render/ScaleKernels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace vantry {

namespace {

struct Samples {
    Samples(int width, int height)
        : width(width)
        , height(height)
        , bytes(static_cast<std::size_t>(width) * height)
    {
    }
    MutablePlane plane() { return { bytes.data(), width, width, height }; }

    int width;
    int height;
    std::vector<std::uint8_t> bytes;
};

double wave(double x, double y)
{
    return 128 + 50 * std::sin(x / 9) + 50 * std::cos(y / 7);
}

Samples waves(int width, int height)
{
    Samples samples(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            samples.plane().row(y)[x] = static_cast<std::uint8_t>(std::lround(wave(x + 0.5, y + 0.5)));
    return samples;
}

Samples noise(int width, int height)
{
    std::mt19937 random(1);
    Samples samples(width, height);
    for (auto& byte : samples.bytes)
        byte = static_cast<std::uint8_t>(random());
    return samples;
}

} // namespace

TEST(PlaneScaler, putsEverySampleWhereItBelongs)
{
    auto source = waves(300, 200);
    struct Case {
        Rect from;
        Rect to;
    };
    for (const auto& [from, to] :
        { Case{ { 0, 0, 300, 200 }, { 0, 0, 450, 300 } }, Case{ { 20.5, 10.25, 200, 150 }, { 3.2, 7.7, 133.3, 100.1 } },
            Case{ { 40, 30, 100, 100 }, { -20.4, -10.6, 280.8, 280.8 } } }) {
        const FrameRect area{ 4, 8, 120, 90 };
        Samples out(120, 90);
        PlaneScaler scaler(from, to, area, 300, 200);
        scaler.scale(source.plane(), out.plane(), 0, 0, area);
        for (int y = area.top; y < area.bottom; ++y)
            for (int x = area.left; x < area.right; ++x) {
                const double u = from.x + (x + 0.5 - to.x) * from.width / to.width;
                const double v = from.y + (y + 0.5 - to.y) * from.height / to.height;
                if (u < from.x + 3 || v < from.y + 3 || u > from.right() - 3 || v > from.bottom() - 3)
                    continue; // Edges are held.
                ASSERT_NEAR(out.plane().row(y)[x], wave(u, v), 2) << x << "," << y;
            }
    }
}

TEST(PlaneScaler, copiesWhereNothingIsScaled)
{
    auto source = noise(64, 64);
    Samples out(40, 40);
    PlaneScaler scaler({ 8, 12, 40, 40 }, { 0, 0, 40, 40 }, { 0, 0, 40, 40 }, 64, 64);
    ASSERT_TRUE(scaler.isCopy());
    scaler.scale(source.plane(), out.plane(), 0, 0, { 0, 0, 40, 40 });
    EXPECT_EQ(out.bytes[0], source.bytes[12 * 64 + 8]);
    EXPECT_EQ(out.bytes[40 * 40 - 1], source.bytes[51 * 64 + 47]);
}

TEST(PlaneScaler, doesNotLetWhatWasCroppedBleedIn)
{
    Samples source(100, 100);
    std::fill(source.bytes.begin(), source.bytes.begin() + 100 * 20, std::uint8_t{ 255 });
    std::fill(source.bytes.begin() + 100 * 20, source.bytes.end(), std::uint8_t{ 50 });
    Samples out(150, 120);
    PlaneScaler scaler({ 0, 20, 100, 80 }, { 0, 0, 150, 120 }, { 0, 0, 150, 120 }, 100, 100);
    scaler.scale(source.plane(), out.plane(), 0, 0, { 0, 0, 150, 120 });
    EXPECT_TRUE(std::all_of(out.bytes.begin(), out.bytes.end(), [](auto byte) { return byte == 50; }));
}

TEST(PlaneScaler, knowsWhatAChangeOfTheSourceReaches)
{
    auto source = noise(200, 150);
    const FrameRect all{ 0, 0, 130, 100 };
    PlaneScaler scaler({ 3.3, 0, 190, 150 }, { 1.7, 2.2, 127, 97 }, all, 200, 150);
    Samples before(130, 100);
    scaler.scale(source.plane(), before.plane(), 0, 0, all);
    const FrameRect change{ 64, 32, 96, 64 };
    for (int y = change.top; y < change.bottom; ++y)
        for (int x = change.left; x < change.right; ++x)
            source.plane().row(y)[x] ^= 0xff;
    Samples after(130, 100);
    scaler.scale(source.plane(), after.plane(), 0, 0, all);

    // Redoing just the affected part gives the whole, and that part is not much too large.
    const auto affected = scaler.affected(change);
    scaler.scale(source.plane(), before.plane(), 0, 0, affected);
    EXPECT_EQ(before.bytes, after.bytes);
    EXPECT_LT(affected.width(), 32 * 127 / 190 + 8);
}

TEST(ScaleKernels, allFormsGiveTheSameBits)
{
    std::mt19937 random(7);
    const auto source = noise(203, 12);
    for (const int taps : { 1, 4, 6, 11 }) {
        std::vector<std::int16_t> weights(static_cast<std::size_t>(taps));
        int rest = AxisMap::unit;
        for (auto& weight : weights)
            rest -= weight = static_cast<std::int16_t>(static_cast<int>(random() % 6000) - 1000);
        weights[0] = static_cast<std::int16_t>(std::clamp(weights[0] + rest, -20000, 20000));
        std::vector<const std::uint8_t*> rows;
        for (int t = 0; t < taps; ++t)
            rows.push_back(source.bytes.data() + t * 203);
        std::vector<std::int16_t> fast(203), plain(203);
        scaleKernels().vertical(fast.data(), rows.data(), weights.data(), taps, 203);
        portableScaleKernels().vertical(plain.data(), rows.data(), weights.data(), taps, 203);
        ASSERT_EQ(fast, plain);
    }
    for (const int taps : { 4, 8, 16 }) {
        std::vector<std::int16_t> in(300), weights(static_cast<std::size_t>(taps) * 101);
        std::vector<int> starts(101);
        for (auto& value : in)
            value = static_cast<std::int16_t>(random() % 16321);
        for (auto& weight : weights)
            weight = static_cast<std::int16_t>(static_cast<int>(random() % 4000) - 1000);
        for (auto& start : starts)
            start = static_cast<int>(random() % 280);
        std::vector<std::uint8_t> fast(101), plain(101);
        scaleKernels().horizontal(fast.data(), in.data(), starts.data(), weights.data(), taps, 101);
        portableScaleKernels().horizontal(plain.data(), in.data(), starts.data(), weights.data(), taps, 101);
        ASSERT_EQ(fast, plain);
    }
}

} // namespace vantry
