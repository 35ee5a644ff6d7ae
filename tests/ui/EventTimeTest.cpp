#include "ui/EventTime.h"

#include <gtest/gtest.h>

namespace vantry {

using namespace std::chrono_literals;

TEST(EventTime, isTheHostsClockIn32Bits)
{
    constexpr std::int64_t wrapped = std::int64_t{ 1 } << 32;
    const HostTime now(std::chrono::milliseconds(wrapped + 50) + 300us);
    EXPECT_EQ(hostTimeOf(wrapped + 20, now), now - 30ms);
    EXPECT_EQ(hostTimeOf(20, now), now - 30ms) << "as the X server sends it";
    EXPECT_EQ(hostTimeOf(static_cast<std::uint32_t>(-50), now), now - 100ms) << "before the numbers began anew";
    EXPECT_EQ(hostTimeOf(60, now), now) << "not from the future";
    EXPECT_EQ(hostTimeOf(3'000'000, now), now) << "another clock";
}

} // namespace vantry
