#include "model/RoomLeft.h"

#include <gtest/gtest.h>

namespace vantry {

using namespace std::chrono_literals;

TEST(RoomLeftTest, lastsAsLongAsTheFolderGrowsAsItDid)
{
    const RoomTaken before{ .folder = 500, .room = 9000, .time = HostTime(1h) };
    const RoomTaken after{ .folder = 2500, .room = 7000, .time = HostTime(1h + 10s) };
    EXPECT_EQ(secondsLeft(before, after), 35);
    EXPECT_EQ(secondsLeft(before, { .folder = 2500, .room = 0, .time = after.time }), 0);
    EXPECT_EQ(secondsLeft(before, { .folder = 2500, .room = 7000, .time = HostTime(1h + 1s) }), std::nullopt) << "too soon";
    EXPECT_EQ(secondsLeft(before, { .folder = 500, .room = 7000, .time = after.time }), std::nullopt) << "nothing is written";
}

} // namespace vantry
