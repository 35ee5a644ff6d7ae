#include "capture/Recorder.h"

#include "support/Ear.h"
#include "support/MediaServer.h"
#include "support/MovieProbe.h"
#include "support/TonePlayer.h"
#include "support/XServer.h"

#include <gmock/gmock.h>

#include <mutex>

namespace vantry {

namespace {

using namespace std::chrono_literals;
using test::pumpUntil;
using test::TonePlayer;
using testing::IsEmpty;
using testing::StartsWith;

enum class SystemAudio { Without, With };

class SystemSoundOfARecorder : public test::EventLoopTest {
protected:
    SystemSoundOfARecorder()
    {
        recorder.setOnStatus([this](const QString& text) {
            const std::lock_guard guard(m_mutex);
            m_status += text.toStdString();
        });
    }

    void start(SystemAudio wanted)
    {
        recorder.setCaptureSystemAudio(wanted == SystemAudio::With);
        recorder.startScreen(displays().at(0)).waitForFinished();
    }

    std::filesystem::path record(std::chrono::milliseconds length)
    {
        const auto file = m_folder / ("clip-" + std::to_string(++m_clips) + ".mov");
        recorder.beginClip(file);
        EXPECT_TRUE(pumpUntil([&] { return recorder.elapsed() > seconds(length); }));
        EXPECT_TRUE(recorder.endClip().result().has_value());
        return file;
    }

    std::string status()
    {
        const std::lock_guard guard(m_mutex);
        return m_status;
    }

    test::XServer screen{ 320, 240 };
    Recorder recorder;

private:
    test::TemporaryFolder m_folder;
    int m_clips = 0;
    std::mutex m_mutex;
    std::string m_status;
};

} // namespace

TEST_F(SystemSoundOfARecorder, isATrackOfItsOwnWithoutHoles)
{
    const TonePlayer player(TonePlayer::Server::Pulse, { 700, 1100 });
    start(SystemAudio::With);
    recorder.setCaptureSystemAudio(false); // Counts from the next start on.
    record(1s);
    const auto clip = record(2s);
    EXPECT_EQ(test::probeStream(clip, "a:0")["channels"], "2");
    EXPECT_THAT(test::probeStream(clip, "a:1"), IsEmpty());
    const auto samples = test::probeSound(clip, "a:0");
    const auto second = std::span(samples).subspan(48000, 96000);
    EXPECT_NEAR(test::loudness(second, 2, 0, 700), TonePlayer::amplitude, 0.03);
    EXPECT_NEAR(test::loudness(second, 2, 1, 1100), TonePlayer::amplitude, 0.03);
    EXPECT_LT(test::loudness(second, 2, 0, 1100), 0.01);
    EXPECT_THAT(status(), IsEmpty());

    recorder.stopScreen().waitForFinished();
    start(SystemAudio::Without);
    EXPECT_THAT(test::probeStream(record(100ms), "a:0"), IsEmpty());
}

TEST_F(SystemSoundOfARecorder, isLeftOutWithAWordWhereThereIsNoServer)
{
    test::MediaServer server;
    server.kill();
    start(SystemAudio::With);
    const auto clip = record(100ms);
    EXPECT_THAT(test::probeStream(clip, "v:0"), testing::Not(IsEmpty()));
    EXPECT_THAT(test::probeStream(clip, "a:0"), IsEmpty());
    EXPECT_THAT(status(), StartsWith("Other applications' sound is not recorded: There is no PipeWire server to connect to: "));
}

} // namespace vantry
