#include "model/LayoutPlacement.h"
#include "model/RoomText.h"
#include "model/VoiceWatch.h"

#include <QVariant>
#include <gtest/gtest.h>

namespace vantry {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

TEST(RoomText, saysHowLongARecordingFits)
{
    constexpr double rate = 1'000'000;
    constexpr std::uintmax_t minute = 60'000'000;
    EXPECT_EQ(roomText({}, rate), u""_s);
    EXPECT_EQ(roomText(59 * minute + minute / 2, rate), u"About 59 min fit on the disk"_s);
    EXPECT_EQ(roomText(200 * minute, rate), u"About 3 h 20 min fit on the disk"_s);
    EXPECT_EQ(roomText(3000 * minute, rate), u"More than a day fits on the disk"_s);
}

TEST(VoiceWatch, missesAVoiceAfterAWhileAndHearsItAtOnce)
{
    VoiceWatch watch;
    const HostTime start = HostClock::now();
    watch.start(start);
    watch.hear(0, start + 5s);
    EXPECT_FALSE(watch.isSilent(start + 5s - 1ms));
    EXPECT_TRUE(watch.isSilent(start + 5s));
    watch.hear(0.1, start + 6s);
    EXPECT_FALSE(watch.isSilent(start + 6s));
}

/// By numbers of their own: the bubble in a frame of 1280x720 as an export has it, y downwards.
TEST(LayoutPlacement, isWhereTheVideoHasIt)
{
    LayoutPlacement placement;
    placement.setProperty("frame", QSizeF(1280, 720));
    placement.setProperty("bubble", 0.25);
    placement.setProperty("layout", LayoutKind::Bubble);
    placement.setProperty("corner", CornerKind::TopRight);
    const QRectF rect = placement.cameraRect();
    EXPECT_NEAR(rect.left(), 1280 - 28.8 - 180, 1e-9);
    EXPECT_NEAR(rect.top(), 28.8, 1e-9);
    EXPECT_NEAR(rect.width(), 180, 1e-9);
    EXPECT_NEAR(placement.cameraRadius(), 90, 1e-9);
    EXPECT_NEAR(placement.ringWidth(), 3.6, 1e-9);
    placement.setProperty("screen", QSizeF(1000, 1000));
    EXPECT_EQ(placement.screenRect(), QRectF(280, 0, 720, 720));
    placement.setProperty("layout", LayoutKind::Screen);
    EXPECT_EQ(placement.cameraOpacity(), 0);
}

} // namespace vantry
