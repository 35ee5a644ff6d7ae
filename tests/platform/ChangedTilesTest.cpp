#include "platform/ChangedTiles.h"

#include <gtest/gtest.h>

#include <random>

namespace vantry {

TEST(ChangedTiles, coverEverythingThatWasAddedWithoutOverlap)
{
    std::mt19937 random(5);
    for (int round = 0; round < 300; ++round) {
        const int width = 2 * (1 + static_cast<int>(random() % 700)), height = 2 * (1 + static_cast<int>(random() % 500));
        ChangedTiles tiles(width, height);
        std::vector<PixelRect> added;
        for (auto left = random() % 60; left > 0; --left) {
            added.push_back({ static_cast<int>(random() % 1500) - 50, static_cast<int>(random() % 1100) - 50,
                static_cast<int>(random() % 90), static_cast<int>(random() % 90) });
            tiles.add(added.back());
        }
        const auto found = tiles.rectangles();
        EXPECT_LE(found.size(), static_cast<std::size_t>(ChangedTiles::maximumRectangles));
        std::vector<char> covered(static_cast<std::size_t>(width * height));
        for (const auto& rect : found) {
            ASSERT_TRUE((PixelRect{ 0, 0, width, height }).contains(rect));
            ASSERT_EQ((rect.x | rect.y | rect.width | rect.height) & 1, 0);
            for (int y = rect.y; y < rect.bottom(); ++y)
                for (int x = rect.x; x < rect.right(); ++x)
                    ASSERT_EQ(covered[static_cast<std::size_t>(y * width + x)]++, 0);
        }
        for (const auto& rect : added) {
            const auto inside = rect.common({ 0, 0, width, height });
            for (int y = inside.y; y < inside.bottom(); ++y)
                for (int x = inside.x; x < inside.right(); ++x)
                    ASSERT_EQ(covered[static_cast<std::size_t>(y * width + x)], 1);
        }
        EXPECT_EQ(found.empty(), std::ranges::none_of(added, [&](const PixelRect& rect) {
            return rect.touches({ 0, 0, width, height });
        }));
    }
}

} // namespace vantry
