#include "media/PictureScaler.h"

#include "support/TestSamples.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(PictureScaler, fillsTheSizeInItsOwnShapeInTheMiddleOfBlack)
{
    constexpr PictureSize size{ 640, 360 };
    PictureScaler scaler(size);
    const auto expectPlace = [&](PictureSize from, int left, int top) {
        PictureBuffer buffer(from.width, from.height);
        buffer.fill(100, 128, 180);
        buffer.plane(PlaneY).row(from.height / 2)[from.width / 2] = 235;
        const auto fitted = scaler.fit(std::move(buffer).share());
        const auto luma = fitted.plane(PlaneY), colour = fitted.plane(PlaneCr);
        ASSERT_EQ(luma.width, size.width);
        ASSERT_EQ(luma.height, size.height);
        for (int y = 0; y < luma.height; ++y)
            for (int x = 0; x < luma.width; ++x) {
                const bool isInside = x >= left && x < size.width - left && y >= top && y < size.height - top;
                ASSERT_EQ(luma.row(y)[x] == 16, !isInside) << x << ',' << y;
                ASSERT_NEAR(colour.row(y / 2)[x / 2], isInside ? 180 : 128, 1) << x << ',' << y;
            }
        EXPECT_GT(luma.row(size.height / 2)[size.width / 2], 120) << "the middle stays there";
    };
    expectPlace({ 320, 240 }, 80, 0);
    expectPlace({ 640, 120 }, 0, 120);
    const auto fitting = test::grey(100, size);
    EXPECT_EQ(scaler.fit(fitting), fitting);
}

} // namespace vantry
