#include "model/CaptureDevices.h"
#include "model/ModelTest.h"
#include "model/PreviewFlow.h"
#include "support/DeviceProgram.h"
#include "support/LoopGaps.h"
#include "support/MediaServer.h"
#include "support/XServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry {

using test::pumpUntil;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

/// A media server that takes everything and says nothing, and a program that starts and ends meanwhile.
class StoppedServerTest : public test::ProjectsTest {
protected:
    void startProgram()
    {
        m_model.emplace(AppModel::Options{ .root = m_root,
            .settingsFile = m_folder / "settings.ini",
            .transcribe = Transcribe::OnRequest,
            .speech = withoutSpeechModel() });
        m_model->devices()->startCamera();
        m_model->devices()->listDisplays();
    }

    std::string status() const { return m_model->status().value_or(QString()).toStdString(); }

    bool reaches(Phase phase)
    {
        return pumpUntil([&] { return m_model->phase() == phase; });
    }

    /// Who waits for the server does so for a second at least; what else takes time is short of that also on a busy machine.
    static constexpr HostDuration longestGap = std::chrono::milliseconds(500);
    static constexpr auto noAnswer = "The media server does not answer: camera and microphone are not recorded.";

    test::MediaServer m_server;
    const test::XServer m_screen{ 320, 240 };
    const test::DeviceProgram m_camera{ "testcamera", { "lonely-camera" } };
    const test::DeviceProgram m_microphone{ "testmicrophone", { "lonely-microphone" } };
    test::LoopGaps m_gaps;
    std::optional<AppModel> m_model;
};

} // namespace

TEST_F(StoppedServerTest, holdsUpNeitherTheStartNorTheEndOfTheProgram)
{
    m_server.freeze();
    startProgram();
    // In the midst of what it asks the server.
    QTimer later;
    later.setSingleShot(true);
    later.start(std::chrono::milliseconds(300));
    ASSERT_TRUE(pumpUntil([&] { return !later.isActive(); }));
    m_model.reset();
    EXPECT_LT(m_gaps.longest(), longestGap);

    startProgram();
    EXPECT_TRUE(pumpUntil([&] { return status() == noAnswer; }));
    m_server.thaw();
    EXPECT_TRUE(pumpUntil([&] { return status().empty() && !m_model->devices()->cameras().empty(); }));
    m_server.freeze();
    m_model.reset();
    EXPECT_LT(m_gaps.longest(), longestGap);
}

TEST_F(StoppedServerTest, holdsUpNeitherTheRecordingOfTheScreenNorItsPreview)
{
    startProgram();
    ASSERT_TRUE(pumpUntil([&] { return !m_model->devices()->cameras().empty(); }));
    // Another one has taken its place: what was known of the devices has to be asked anew.
    m_server.kill();
    m_server.start();
    m_server.freeze();
    m_model->record();
    ASSERT_TRUE(reaches(Phase::recording())) << m_model->alert().value_or(QString()).toStdString();
    ASSERT_TRUE(pumpUntil([&] { return m_model->liveTime() >= 1; }));
    EXPECT_TRUE(pumpUntil([&] { return status().find("does not answer") != std::string::npos; }));
    m_model->stop(0);
    ASSERT_TRUE(reaches(Phase::editing()));
    EXPECT_THAT(m_model->project()->clips, SizeIs(1));
    EXPECT_EQ(m_model->alert(), std::nullopt);
    EXPECT_THAT(status(), IsEmpty());

    m_model->refreshPlayer();
    ASSERT_TRUE(pumpUntil([&] { return !m_model->preview()->isEmpty(); }));
    m_model->seek(0);
    m_model->preview()->toggle();
    EXPECT_TRUE(pumpUntil([&] { return m_model->playhead() > 0.5; })) << "without sound";
    m_model.reset();
    EXPECT_LT(m_gaps.longest(), longestGap);
}

} // namespace vantry
