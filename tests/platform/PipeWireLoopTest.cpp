#include "platform/PipeWireLoop.h"

#include "platform/SoundOutput.h"
#include "platform/SystemSound.h"
#include "support/MediaServer.h"

#include <gmock/gmock.h>

#include <atomic>

namespace vantry {

namespace {

class PipeWireLoopTest : public test::EventLoopTest { };

} // namespace

TEST_F(PipeWireLoopTest, whoeverUsesItHearsOnceThatTheServerHasGone)
{
    test::MediaServer server;
    std::atomic<int> lost = 0, unheard = 0, unplayed = 0;
    PipeWireLoop loop("test.media", [&](const AppError&) { ++lost; });
    const SystemSound sound(
        loop, { .onSound = [](std::span<const float>, HostTime) {}, .onFailed = [&](const AppError&) { ++unheard; } });
    SoundOutput output(loop, [&](const AppError&) { ++unplayed; });
    ASSERT_TRUE(loop.awaitServer());
    output.start();
    EXPECT_FALSE(output.heardAt(HostClock::now())) << "there is no device";
    server.kill();
    EXPECT_TRUE(test::pumpUntil([&] { return lost > 0 && unheard > 0 && unplayed > 0; }));
    EXPECT_FALSE(loop.awaitServer());
    EXPECT_EQ(lost, 1);
    EXPECT_EQ(unheard, 1);
    EXPECT_EQ(unplayed, 1);
    EXPECT_THAT([] { PipeWireLoop another("test.media"); },
        testing::ThrowsMessage<AppError>(testing::StartsWith("There is no PipeWire server to connect to: ")));
}

} // namespace vantry
