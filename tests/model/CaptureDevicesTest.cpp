#include "model/CaptureDevices.h"
#include "capture/Recorder.h"
#include "model/ModelTest.h"
#include "support/DeviceProgram.h"
#include "support/MediaServer.h"
#include "support/XServer.h"

#include <QCoroTask>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry {

using namespace Qt::StringLiterals;
using test::pumpUntil;
using testing::Contains;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

/// The desktop's camera, microphone and media server.
class CaptureDevicesTest : public test::ModelTest {
protected:
    void list() { QCoro::waitFor(m_devices.listDevices()); }

    bool hasCamera(const std::string& id) const
    {
        return std::ranges::find(m_devices.cameras(), id, &MediaDevice::id) != m_devices.cameras().end();
    }

    Settings& m_settings = *m_model.settings();
    CaptureDevices& m_devices = *m_model.devices();
};

} // namespace

TEST_F(CaptureDevicesTest, aChoiceThatIsNotThereGivesWayAtTheStartOnly)
{
    m_settings.setCameraID(u"no such camera"_s);
    m_settings.setMicID(u"no such microphone"_s);
    list();
    EXPECT_THAT(m_devices.cameras(), Contains(Field(&MediaDevice::id, "test-camera")));
    EXPECT_THAT(m_devices.mics(), Contains(Field(&MediaDevice::name, "Test microphone")));
    EXPECT_EQ(m_settings.cameraID().toStdString(), m_devices.cameras().front().id);
    EXPECT_EQ(m_settings.micID(), u"test-microphone"_s);
    EXPECT_EQ(m_model.status(), u"The chosen microphone is not there: Test microphone is recorded."_s);
    m_settings.setMicID(m_settings.micID());
    EXPECT_EQ(m_model.status(),
        "The chosen camera is not there: "_L1 + QString::fromStdString(m_devices.cameras().front().name) + " is recorded."_L1)
        << "the other one is the choice now";

    {
        const test::OwnCamera camera;
        EXPECT_TRUE(pumpUntil([&] { return hasCamera(camera.name()); }));
        m_settings.setCameraID(QString::fromStdString(camera.name()));
    }
    EXPECT_TRUE(pumpUntil([&] { return !hasCamera(m_settings.cameraID().toStdString()); }))
        << "what was unplugged is listed no more";
    EXPECT_THAT(m_settings.cameraID().toStdString(), HasSubstr("camera-")) << "and comes back";
}

TEST_F(CaptureDevicesTest, aChoiceThatComesLateIsTakenUpAgainWhileNothingIsRecorded)
{
    const test::MediaServer server; // where nothing is plugged in yet
    const test::XServer screen{ 320, 240 };
    m_settings.setCameraID(u"desk-camera"_s);
    m_settings.setMicID(u"desk-microphone"_s);
    list();
    EXPECT_EQ(m_settings.cameraID(), u""_s);
    EXPECT_EQ(m_model.status(), u"No microphone was found: your voice is not recorded."_s);
    const test::DeviceProgram microphone("testmicrophone", { "desk-microphone" });
    EXPECT_TRUE(pumpUntil([&] { return m_settings.micID() == u"desk-microphone"_s; }));
    EXPECT_EQ(m_model.status(), u"The chosen camera is not there: no camera is recorded."_s);
    const test::DeviceProgram otherCamera("testcamera", { "other-camera", "Built in" });
    EXPECT_TRUE(pumpUntil([&] { return m_settings.cameraID() == u"other-camera"_s; }));
    EXPECT_EQ(m_model.status(), u"The chosen camera is not there: Built in is recorded."_s);

    m_model.record();
    ASSERT_TRUE(pumpUntil([&] { return m_model.phase() == Phase::recording(); })) << alert();
    const test::DeviceProgram camera("testcamera", { "desk-camera" });
    ASSERT_TRUE(pumpUntil([&] { return hasCamera("desk-camera"); }));
    EXPECT_EQ(m_settings.cameraID(), u"other-camera"_s);
    m_model.stop(0);
    ASSERT_TRUE(pumpUntil([&] { return m_model.phase() == Phase::editing(); })) << alert();
    EXPECT_EQ(m_settings.cameraID(), u"desk-camera"_s);
    EXPECT_EQ(m_model.status(), std::nullopt);
}

TEST_F(CaptureDevicesTest, aRunningCameraFollowsTheChoice)
{
    const test::OwnCamera other;
    m_devices.startCamera(); // before anything is listed
    m_devices.startMeter();
    int changes = 0;
    QObject::connect(m_devices.mirror(), &CameraMirror::changed, &m_devices, [&] { ++changes; });
    ASSERT_TRUE(pumpUntil([&] { return !m_devices.mirror()->image({ 90, 60 }).isNull(); }));
    EXPECT_TRUE(m_model.hasCamera());
    EXPECT_TRUE(pumpUntil([&] { return changes > 5; }));
    // 440 Hz at a quarter of full scale is -15 dBFS.
    EXPECT_TRUE(pumpUntil([&] { return std::abs(m_devices.micLevel() - 0.75) < 0.02; })) << m_devices.micLevel();

    ASSERT_TRUE(pumpUntil([&] { return hasCamera(other.name()); }));
    m_settings.setCameraID(QString::fromStdString(other.name()));
    EXPECT_EQ(m_model.recorder().session().cameraSize(), (PictureSize{ 1920, 1080 }));
    changes = 0;
    EXPECT_TRUE(pumpUntil([&] { return changes > 5; }));

    m_devices.stopCamera();
    EXPECT_TRUE(pumpUntil([&] { return m_devices.mirror()->image({ 90, 60 }).isNull() && m_devices.micLevel() == 0; }));
}

TEST_F(CaptureDevicesTest, devicesComeWithTheMediaServer)
{
    {
        test::MediaServer server;
        server.kill();
        list();
        EXPECT_THAT(m_devices.cameras(), IsEmpty());
        EXPECT_TRUE(pumpUntil([&] { return m_model.status().has_value(); }));
        EXPECT_THAT(m_model.status()->toStdString(), HasSubstr("Start PipeWire"));
        EXPECT_EQ(m_settings.cameraID(), u""_s);
    }
    // From here on new connections go to the desktop's.
    EXPECT_TRUE(pumpUntil([&] { return hasCamera("test-camera"); }));
    EXPECT_EQ(m_settings.micID(), u"test-microphone"_s);
}

} // namespace vantry
