#include "render/PlaneScaler.h"
#include "render/ScaleKernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace vantry {

namespace {

constexpr int width = 203; ///< Of a row: no multiple of what a processor takes at once.

std::vector<std::uint8_t> noise(std::size_t size)
{
    std::mt19937 random(1);
    std::vector<std::uint8_t> bytes(size);
    std::ranges::generate(bytes, [&] { return static_cast<std::uint8_t>(random()); });
    return bytes;
}

} // namespace

TEST(PlaneScaler, doesNotLetWhatWasCroppedBleedIn)
{
    std::vector<std::uint8_t> source(100 * 100, 50), scaled(150 * 120);
    std::fill_n(source.begin(), 100 * 20, std::uint8_t{ 255 });
    PlaneScaler scaler({ 0, 20, 100, 80 }, { 0, 0, 150, 120 }, { 0, 0, 150, 120 }, 100, 100);
    scaler.scale({ source.data(), 100, 100, 100 }, { scaled.data(), 150, 150, 120 }, 0, 0, { 0, 0, 150, 120 });
    EXPECT_EQ(std::ranges::count(scaled, 50), std::ssize(scaled));
}

TEST(PlaneScaler, knowsWhatAChangeOfTheSourceReaches)
{
    auto source = noise(200 * 150);
    std::vector<std::uint8_t> before(130 * 100), after(130 * 100);
    const FrameRect all{ 0, 0, 130, 100 };
    PlaneScaler scaler({ 3.3, 0, 190, 150 }, { 1.7, 2.2, 127, 97 }, all, 200, 150);
    const auto scale = [&](std::vector<std::uint8_t>& scaled, const FrameRect& area) {
        scaler.scale({ source.data(), 200, 200, 150 }, { scaled.data(), 130, 130, 100 }, 0, 0, area);
    };
    scale(before, all);
    const FrameRect change{ 64, 32, 96, 64 };
    for (int y = change.top; y < change.bottom; ++y)
        for (int x = change.left; x < change.right; ++x)
            source[static_cast<std::size_t>(y * 200 + x)] ^= 0xff;
    scale(after, all);

    // Redoing just the affected part gives the whole, and that part is not much too large.
    const auto affected = scaler.affected(change);
    scale(before, affected);
    EXPECT_EQ(before, after);
    EXPECT_LT(affected.width(), 32 * 127 / 190 + 8);
}

TEST(ScaleKernels, allFormsGiveTheSameBits)
{
    std::mt19937 random(7);
    const auto source = noise(width * 11);
    for (const int taps : { 1, 4, 6, 11 }) {
        std::vector<std::int16_t> weights(static_cast<std::size_t>(taps));
        int rest = AxisMap::unit;
        for (auto& weight : weights)
            rest -= weight = static_cast<std::int16_t>(static_cast<int>(random() % 6000) - 1000);
        weights[0] = static_cast<std::int16_t>(std::clamp(weights[0] + rest, -20000, 20000));
        std::vector<const std::uint8_t*> rows;
        for (int t = 0; t < taps; ++t)
            rows.push_back(source.data() + t * width);
        std::vector<std::int16_t> fast(width), plain(width);
        scaleKernels().vertical(fast.data(), rows.data(), weights.data(), taps, width);
        portableScaleKernels().vertical(plain.data(), rows.data(), weights.data(), taps, width);
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
