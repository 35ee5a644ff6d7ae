#include "media/PictureScaler.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

/// Four quarters: the left top one bright, the right bottom one coloured.
Picture quarters(int width, int height)
{
    PictureBuffer buffer(width, height);
    buffer.fill(100, 128, 128);
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto plane = buffer.plane(index);
        for (int y = 0; y < plane.height; ++y)
            for (int x = 0; x < plane.width; ++x) {
                if (index == PlaneY && 2 * x < plane.width && 2 * y < plane.height)
                    plane.row(y)[x] = 200;
                if (index == PlaneCr && 2 * x >= plane.width && 2 * y >= plane.height)
                    plane.row(y)[x] = 180;
            }
    }
    return std::move(buffer).share();
}

} // namespace

TEST(PictureScaler, fillsTheSizeInItsOwnShapeInTheMiddleOfBlack)
{
    PictureScaler scaler({ 640, 360 });
    const auto fitted = scaler.fit(quarters(320, 240)); // becomes 480x360 with 80 on both sides
    const auto luma = fitted.plane(PlaneY);
    ASSERT_EQ(luma.width, 640);
    ASSERT_EQ(luma.height, 360);
    for (int y : { 0, 359 }) {
        EXPECT_EQ(luma.row(y)[79], 16);
        EXPECT_EQ(luma.row(y)[560], 16);
    }
    EXPECT_NEAR(luma.row(2)[82], 200, 1);
    EXPECT_NEAR(luma.row(170)[310], 200, 1);
    EXPECT_NEAR(luma.row(170)[330], 100, 1);
    EXPECT_NEAR(luma.row(359)[559], 100, 1);
    EXPECT_NEAR(fitted.plane(PlaneCr).row(100)[170], 180, 1);
    EXPECT_NEAR(fitted.plane(PlaneCr).row(80)[150], 128, 1);
    EXPECT_EQ(fitted.plane(PlaneCr).row(100)[39], 128);

    const auto wide = scaler.fit(quarters(640, 90));
    EXPECT_EQ(wide.plane(PlaneY).row(133)[0], 16);
    EXPECT_NEAR(wide.plane(PlaneY).row(136)[0], 200, 1);
    EXPECT_EQ(wide.plane(PlaneY).row(226)[0], 16);
}

TEST(PictureScaler, passesOnWhatFitsAlready)
{
    PictureScaler scaler({ 64, 36 });
    const auto picture = quarters(64, 36);
    EXPECT_EQ(scaler.fit(picture), picture);
}

} // namespace vantry
