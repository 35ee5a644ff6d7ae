#include "platform/MediaDevices.h"

#include "platform/PipeWireLoop.h"
#include "support/DeviceProgram.h"
#include "support/PumpUntil.h"

#include <gmock/gmock.h>

#include <atomic>

namespace vantry {

namespace {

using test::DeviceProgram;
using test::pumpUntil;
using test::uniqueName;
using testing::Contains;

class MediaDevicesTest : public test::EventLoopTest { };

} // namespace

TEST_F(MediaDevicesTest, theFirstListIsWholeAndOthersComeAndGo)
{
    const auto camera = uniqueName("camera"), microphone = uniqueName("microphone");
    PipeWireLoop loop("test.devices");
    std::atomic<int> changes = 0;
    MediaDevices devices(loop, [&](const MediaDeviceList&) { ++changes; });
    ASSERT_TRUE(pumpUntil([&] { return devices.list().has_value(); }));
    const auto atOnce = *devices.list();
    EXPECT_THAT(atOnce.cameras, Contains(MediaDevice{ "test-camera", "Test camera" }));
    // Other tests bring microphones too.
    EXPECT_TRUE(atOnce.defaultMicrophone && atOnce.hasMicrophone(*atOnce.defaultMicrophone));
    EXPECT_FALSE(atOnce.hasMicrophone("test-sink")) << "what speakers play can be recorded too, but they are no microphone";
    {
        const DeviceProgram cameraProgram("testcamera", { camera, "Desk" });
        const DeviceProgram microphoneProgram("testmicrophone", { microphone, "Headset" });
        EXPECT_TRUE(pumpUntil([&] { return devices.list()->hasCamera(camera) && devices.list()->hasMicrophone(microphone); }));
        EXPECT_THAT(devices.list()->microphones, Contains(MediaDevice{ microphone, "Headset" }));
        EXPECT_GE(changes, 2);
    }
    EXPECT_TRUE(pumpUntil([&] { return !devices.list()->hasCamera(camera) && !devices.list()->hasMicrophone(microphone); }));
    EXPECT_TRUE(devices.list()->hasCamera("test-camera"));
    EXPECT_GE(changes, 4);
}

} // namespace vantry
