#include "platform/MediaDevices.h"

#include "platform/PipeWireLoop.h"
#include "support/DeviceProgram.h"
#include "support/PumpUntil.h"

#include <gmock/gmock.h>

#include <atomic>
#include <optional>

namespace vantry {

namespace {

using test::DeviceProgram;
using test::pumpUntil;
using test::uniqueName;
using testing::Contains;

class MediaDevicesTest : public test::EventLoopTest { };

} // namespace

TEST_F(MediaDevicesTest, knowsTheDesktopsDevicesAtOnce)
{
    PipeWireLoop loop("test.devices");
    const MediaDevices devices(loop);
    const auto list = devices.list();
    EXPECT_THAT(list.cameras, Contains(MediaDevice{ "test-camera", "Test camera" }));
    EXPECT_THAT(list.microphones, Contains(MediaDevice{ "test-microphone", "Test microphone" }));
    // Other tests bring microphones too.
    ASSERT_TRUE(list.defaultMicrophone);
    EXPECT_TRUE(list.hasMicrophone(*list.defaultMicrophone));
    // What the speakers play can be recorded too, but it is no microphone.
    EXPECT_FALSE(list.hasMicrophone("test-sink"));
}

TEST_F(MediaDevicesTest, devicesComeAndGo)
{
    const auto camera = uniqueName("camera"), microphone = uniqueName("microphone");
    PipeWireLoop loop("test.devices");
    std::atomic<int> changes = 0;
    MediaDevices devices(loop, [&](const MediaDeviceList&) { ++changes; });
    {
        const DeviceProgram cameraProgram("testcamera", { camera, "Desk" });
        const DeviceProgram microphoneProgram("testmicrophone", { microphone, "Headset" });
        EXPECT_TRUE(pumpUntil([&] { return devices.list().hasCamera(camera) && devices.list().hasMicrophone(microphone); }));
        EXPECT_THAT(devices.list().cameras, Contains(MediaDevice{ camera, "Desk" }));
        EXPECT_THAT(devices.list().microphones, Contains(MediaDevice{ microphone, "Headset" }));
        EXPECT_TRUE(devices.list().hasCamera("test-camera"));
        EXPECT_GE(changes, 2);
    }
    EXPECT_TRUE(pumpUntil([&] { return !devices.list().hasCamera(camera) && !devices.list().hasMicrophone(microphone); }));
    EXPECT_TRUE(devices.list().hasCamera("test-camera"));
    EXPECT_GE(changes, 4);
}

} // namespace vantry
