#include "media/Picture.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(PicturePool, usesMemoryAgainOnceAPictureIsGoneAndLeavesItToOneThatIsHeld)
{
    Picture held;
    {
        PicturePool pool(16, 16);
        auto buffer = pool.make();
        const auto* memory = buffer.plane(PlaneY).data;
        buffer.fill(16, 128, 128);
        held = std::move(buffer).share();
        EXPECT_NE(pool.make().plane(PlaneY).data, memory);
        held = {};
        const auto first = pool.make(), second = pool.make();
        EXPECT_TRUE(first.plane(PlaneY).data == memory || second.plane(PlaneY).data == memory);
        auto last = pool.make();
        last.fill(200, 90, 90);
        held = std::move(last).share();
    }
    EXPECT_EQ(held.plane(PlaneY).row(15)[15], 200) << "its pool has gone";
}

} // namespace vantry
