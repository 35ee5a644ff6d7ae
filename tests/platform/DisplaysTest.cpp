#include "platform/Displays.h"

#include "support/XServer.h"

#include <gmock/gmock.h>

namespace vantry {

namespace {

/// Makes a part of the screen a monitor of its own, as a second or a tiled display is.
void addMonitor(const std::string& name, const std::string& geometry)
{
    ASSERT_EQ(test::Program({ "xrandr", "--setmonitor", name, geometry, "none" }).wait(), 0);
}

} // namespace

TEST(Displays, differInTheirIdsAndKeepThem)
{
    std::vector<Display> before;
    {
        test::XServer server(1000, 600);
        before = displays();
    }
    ASSERT_EQ(before.size(), 1u);
    EXPECT_FALSE(before[0].name.empty());
    EXPECT_EQ(before[0].width, 1000);
    EXPECT_EQ(before[0].height, 600);
    test::XServer again(1000, 600);
    EXPECT_EQ(displays(), before);

    addMonitor("RIGHT", "400/100x600/150+600+0");
    const auto first = displays();
    addMonitor("LEFT", "600/150x600/150+0+0");
    const auto both = displays();
    ASSERT_GE(both.size(), 2u);
    EXPECT_THAT(first, testing::Contains(testing::Field(&Display::name, "RIGHT")));
    EXPECT_THAT(both, testing::IsSupersetOf(first));
    EXPECT_NE(both[0].id, both[1].id);
}

} // namespace vantry
