#include "platform/MicrophoneStream.h"

#include "platform/MediaDevices.h"
#include "platform/PipeWireLoop.h"
#include "support/Collected.h"
#include "support/DeviceProgram.h"
#include "support/PumpUntil.h"

namespace vantry {

namespace {

using test::pumpUntil;
using namespace std::chrono_literals;

HostDuration distanceToSecond(HostTime time)
{
    const auto rest = time.time_since_epoch() % HostDuration(1s);
    return std::min(rest, HostDuration(1s) - rest);
}

class MicrophoneStreamTest : public test::EventLoopTest { };

} // namespace

TEST_F(MicrophoneStreamTest, aClickIsStampedWithTheTimeAtWhichItWasHeard)
{
    const auto name = test::uniqueName("microphone");
    const test::DeviceProgram program("testmicrophone", { name, "Clicks", "clicks" });
    PipeWireLoop loop("test.microphone");
    const MediaDevices devices(loop);
    ASSERT_TRUE(pumpUntil([&] { return devices.list() && devices.list()->hasMicrophone(name); }));
    test::Collected<HostTime> clicks;
    const auto listen = [&](std::span<const float> samples, HostTime first) {
        for (std::size_t i = 0; i < samples.size(); ++i)
            if (samples[i] > 0.5F)
                clicks.add(first + HostDuration(1s) * static_cast<std::int64_t>(i) / MicrophoneStream::sampleRate);
    };
    const MicrophoneStream stream(loop, name, { .onSound = listen, .onFailed = {} });
    ASSERT_TRUE(pumpUntil([&] { return clicks.count() >= 3; }));
    for (const auto click : clicks.all())
        EXPECT_LT(distanceToSecond(click), 5ms);
}

} // namespace vantry
