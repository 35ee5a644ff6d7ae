#include "capture/Recorder.h"
#include "model/CaptureDevices.h"
#include "model/ModelTest.h"
#include "support/DeviceProgram.h"
#include "support/FlashAndClick.h"
#include "support/MovieProbe.h"
#include "support/TonePlayer.h"
#include "support/XServer.h"

#include <QCoroTask>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry {

using test::pumpUntil;

namespace {

/// A screen, a camera that flashes at each second of the clock, a microphone that hears a click then, and a program that plays a
/// tone.
class SourcesTest : public test::ModelTest {
protected:
    void choose()
    {
        CaptureDevices& devices = *m_model.devices();
        QCoro::waitFor(devices.listDevices());
        ASSERT_TRUE(pumpUntil([&] {
            return std::ranges::find(devices.cameras(), m_cameraName, &MediaDevice::id) != devices.cameras().end()
                && std::ranges::find(devices.mics(), m_microphoneName, &MediaDevice::id) != devices.mics().end();
        }));
        m_model.settings()->setCameraID(QString::fromStdString(m_cameraName));
        m_model.settings()->setMicID(QString::fromStdString(m_microphoneName));
        m_model.settings()->setSetupLayout(Layout::camera);
    }

    void record(double length)
    {
        m_model.record();
        ASSERT_TRUE(pumpUntil([&] { return m_model.phase() == Phase::recording(); })) << alert();
        ASSERT_TRUE(pumpUntil([&] { return m_model.liveTime() >= length; }));
        m_model.stop(0);
        ASSERT_TRUE(pumpUntil([&] { return m_model.phase() == Phase::editing(); })) << alert();
    }

    const std::string m_cameraName = test::uniqueName("camera");
    const std::string m_microphoneName = test::uniqueName("microphone");
    const test::XServer m_screen{ 640, 360 };
    const test::DeviceProgram m_camera{ "testcamera", { m_cameraName, "Flashes", "YUY2", "640x360", "seconds" } };
    test::DeviceProgram m_microphone{ "testmicrophone", { m_microphoneName, "Clicks", "clicks" } };
};

} // namespace

TEST_F(SourcesTest, whatHappensTogetherStaysTogether)
{
    choose();
    const test::TonePlayer tone(test::TonePlayer::Server::PipeWire, { 440, 660 });
    record(5.5);
    const auto clip = *m_model.folder() / m_model.project()->clips.at(0).file;
    EXPECT_EQ(test::probeStream(clip, "v:0")["codec_name"], "hevc");
    EXPECT_EQ(test::probeStream(clip, "v:1")["codec_name"], "h264");
    EXPECT_EQ(test::probeStream(clip, "a:0")["channels"], "1");
    EXPECT_EQ(test::probeStream(clip, "a:1")["channels"], "2");
    const auto system = test::probeSound(clip, "a:1");
    EXPECT_TRUE(std::ranges::any_of(system, [](float sample) { return std::abs(sample) > 0.01F; }));

    constexpr double frame = 1.0 / 30;
    const auto recorded = test::clicksAfterFlashes(clip, "v:1", 1);
    ASSERT_GE(recorded.size(), 3u);
    EXPECT_THAT(recorded, testing::Each(testing::DoubleNear(0, frame)));

    // In the video a flash waits for the next of its pictures.
    m_model.edit(Rebuild::No, [](Project& project) { project.systemVolume = 0; });
    m_model.exportTo(m_folder / "video.mp4");
    ASSERT_TRUE(pumpUntil([&] { return !m_model.busy(); }));
    ASSERT_THAT(alert(), testing::IsEmpty());
    const auto exported = test::clicksAfterFlashes(m_folder / "video.mp4", "v:0", 2);
    ASSERT_GE(exported.size(), 3u);
    EXPECT_THAT(exported, testing::Each(testing::DoubleNear(-frame / 2, frame / 2 + 0.005)));
}

TEST_F(SourcesTest, aMicrophoneThatFallsSilentIsSeenAndToldWhileRecording)
{
    choose();
    m_model.record();
    ASSERT_TRUE(pumpUntil([&] { return m_model.phase() == Phase::recording(); })) << alert();
    EXPECT_EQ(m_model.status(), std::nullopt);
    m_microphone.freeze();
    ASSERT_TRUE(pumpUntil([&] { return m_model.status().has_value(); }));
    EXPECT_THAT(m_model.status()->toStdString(), testing::StartsWith("Clicks: no sound comes from it."));
    m_microphone.thaw();
    EXPECT_TRUE(pumpUntil([&] { return !m_model.status(); }));
}

TEST_F(SourcesTest, aRefusedCameraIsToldBeforeTheCountdownAndOnlyOnce)
{
    const std::string busyName = test::uniqueName("busy");
    const test::DeviceProgram busy("testcamera", { busyName, "Busy camera", "YUY2", "640x360", "busy" });
    choose();
    m_model.settings()->setCameraID(QString::fromStdString(busyName));
    m_model.devices()->startCamera();
    ASSERT_TRUE(pumpUntil([&] { return !m_model.recorder().session().refusal().empty(); }));

    m_model.record();
    ASSERT_TRUE(pumpUntil([&] { return m_model.alert().has_value(); }));
    EXPECT_THAT(alert(),
        testing::AllOf(testing::StartsWith("Busy camera: "), testing::EndsWith("Press Record again to record without it.")));
    EXPECT_EQ(m_model.phase(), Phase::setup());
    m_model.setAlert(std::nullopt);

    EXPECT_FALSE(m_model.hasCamera()) << "no bubble is shown where no picture is recorded";
    record(1);
    EXPECT_EQ(m_model.alert(), std::nullopt);
    EXPECT_EQ(m_model.project()->clips.size(), 1u);
}

} // namespace vantry
