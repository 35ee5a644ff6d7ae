#include "media/Picture.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(PicturePool, usesMemoryAgainOnceThePictureIsGone)
{
    PicturePool pool(64, 48);
    auto buffer = pool.make();
    const auto* memory = buffer.plane(PlaneY).data;
    buffer.fill(16, 128, 128);
    {
        const Picture held = std::move(buffer).share();
        EXPECT_NE(pool.make().plane(PlaneY).data, memory);
        EXPECT_EQ(held.plane(PlaneCr).width, 32);
    }
    auto first = pool.make();
    auto second = pool.make();
    EXPECT_TRUE(first.plane(PlaneY).data == memory || second.plane(PlaneY).data == memory);
}

TEST(Picture, outlivesItsPool)
{
    Picture picture;
    {
        PicturePool pool(16, 16);
        auto buffer = pool.make();
        buffer.fill(200, 90, 90);
        picture = std::move(buffer).share();
    }
    EXPECT_EQ(picture.plane(PlaneY).row(15)[15], 200);
    EXPECT_EQ(picture.plane(PlaneCb).row(7)[7], 90);
}

} // namespace vantry
