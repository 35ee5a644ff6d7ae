#include "capture/HotKeys.h"
#include "capture/Recorder.h"
#include "model/CaptureDevices.h"
#include "model/ModelTest.h"
#include "model/PreviewFlow.h"
#include "model/QuitFlow.h"
#include "project/Timeline.h"
#include "support/Command.h"
#include "support/FileSizeLimit.h"
#include "support/MediaServer.h"
#include "support/MovieProbe.h"
#include "support/XServer.h"

#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace vantry {

namespace fs = std::filesystem;
using test::pumpUntil;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

namespace {

QByteArray contents(const fs::path& file)
{
    QFile opened(file);
    return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
}

/// Records a small screen of its own, with a media server that has no devices.
class RecordingTest : public test::ModelTest {
protected:
    explicit RecordingTest(Transcribe transcribe = Transcribe::OnRequest)
        : ModelTest(transcribe)
    {
        QObject::connect(&m_model, &AppModel::phaseChanged, &m_model, [this] { m_phases.push_back(m_model.phase()); });
        QCoro::waitFor(m_model.devices()->listDevices());
    }

    void press(HotKey key) { m_model.hotkey(static_cast<std::uint32_t>(key)); }

    bool reaches(Phase phase)
    {
        return pumpUntil([&] { return m_model.phase() == phase; });
    }

    /// One clip of about a second, and the model is editing.
    void recordASecond(std::optional<double> cutAt = std::nullopt)
    {
        m_model.record(cutAt);
        ASSERT_TRUE(reaches(Phase::recording())) << alert();
        const double start = m_model.liveTime();
        ASSERT_TRUE(pumpUntil([&] { return m_model.liveTime() >= start + 1; }));
        m_model.stop(0);
        ASSERT_TRUE(reaches(Phase::editing()));
        ASSERT_THAT(alert(), IsEmpty());
    }

    test::MediaServer m_server;
    test::XServer m_screen{ 320, 240 };
    std::vector<Phase> m_phases;
};

class TranscribedRecordingTest : public RecordingTest {
protected:
    TranscribedRecordingTest()
        : RecordingTest(Transcribe::ByItself)
    {
    }
};

} // namespace

TEST_F(RecordingTest, aRecordingBecomesAClipAndARetakeTakesThePlaceOfWhatWasCutOff)
{
    recordASecond();
    EXPECT_THAT(m_phases,
        ElementsAre(
            Phase::countdown(3), Phase::countdown(2), Phase::countdown(1), Phase::recording(), Phase::saving(), Phase::editing()));
    EXPECT_EQ(m_model.revision(), 1);
    ASSERT_THAT(onDisk().clips, SizeIs(1));
    const Clip first = m_model.project()->clips.front();
    EXPECT_THAT(first.file, testing::MatchesRegex("clip-[0-9]+\\.mov"));
    EXPECT_GE(first.duration, 1);
    EXPECT_EQ(first.keep, first.duration);
    EXPECT_EQ(first.transcript, std::nullopt);
    EXPECT_EQ(m_model.pendingSeek(), first.duration);

    m_model.settings()->setSystemAudio(false);
    recordASecond(0.5);
    const Project saved = onDisk();
    ASSERT_THAT(saved.clips, SizeIs(2));
    EXPECT_EQ(saved.clips[0].id, first.id);
    EXPECT_EQ(saved.clips[0].keep, 0.5);
    EXPECT_EQ(saved.clips[0].duration, first.duration);
    EXPECT_EQ(saved.clips[1].keep, saved.clips[1].duration);
    EXPECT_NE(saved.clips[0].file, saved.clips[1].file);

    for (const Clip& clip : saved.clips) {
        const fs::path movie = *m_model.folder() / clip.file;
        EXPECT_EQ(test::probeStream(movie, "v:0")["width"], "320");
        EXPECT_NEAR(test::probeEnd(movie, "v:0"), clip.duration, 0.01);
        EXPECT_EQ(test::probeFrames(movie, "v:0").at(0).time, 0) << "a still screen has a picture from the first instant";
        EXPECT_EQ(test::probeStream(movie, "a:0")["channels"], clip.id == first.id ? "2" : "") << "other applications' sound";
    }
}

TEST_F(TranscribedRecordingTest, aRecordingIsTranscribedWhenItHasEnded)
{
    recordASecond();
    EXPECT_TRUE(pumpUntil([&] { return m_model.project()->clips.at(0).transcript == std::vector<Line>(); }));
}

TEST_F(RecordingTest, aKeySwitchesTheLayoutWhenItIsPressed)
{
    HotKeys keys([](const QString& trouble) { ADD_FAILURE() << trouble.toStdString(); });
    keys.install([&](std::uint32_t id) { m_model.hotkey(id); });
    m_model.record();
    ASSERT_TRUE(reaches(Phase::recording())) << alert();
    Recorder& recorder = m_model.recorder();
    std::vector<double> late;
    for (const std::string key : { "2", "3", "1", "2", "3" }) {
        // Changes that lie close together would become one.
        const double last = m_model.project()->layouts.back().time;
        ASSERT_TRUE(pumpUntil([&] { return recorder.elapsed() > last + 0.2; }));
        const double before = recorder.elapsed();
        test::runCommand("xdotool key ctrl+alt+" + key);
        const double after = recorder.elapsed();
        ASSERT_TRUE(pumpUntil([&] { return m_model.project()->layouts.back().time >= before; }));
        late.push_back(m_model.project()->layouts.back().time - after);
    }
    EXPECT_THAT(m_model.project()->layouts, SizeIs(1 + late.size()));
    std::ranges::nth_element(late, late.begin() + 2);
    EXPECT_LE(late[2], 0.05);
}

TEST_F(RecordingTest, aCancelledStartLeavesNothingBehind)
{
    press(HotKey::StartOrStop);
    ASSERT_TRUE(reaches(Phase::countdown(2)));
    const fs::path folder = *m_model.folder();
    press(HotKey::StartOrStop);
    ASSERT_TRUE(reaches(Phase::setup()));
    EXPECT_FALSE(fs::exists(folder));
    EXPECT_FALSE(m_model.project());
    EXPECT_THAT(alert(), IsEmpty());

    recordASecond();
    EXPECT_THAT(m_model.project()->clips, SizeIs(1)) << "a new attempt starts afresh";
}

TEST_F(RecordingTest, otherCommandsWaitUntilTheRecordingIsOver)
{
    const fs::path other = writeProject("other");
    m_model.record();
    m_model.record(0.0);
    m_model.open(other);
    m_model.newRecording();
    ASSERT_TRUE(reaches(Phase::recording()));
    const fs::path folder = *m_model.folder();
    m_model.record();
    m_model.open(other);
    m_model.newRecording();
    EXPECT_EQ(m_model.phase(), Phase::recording());
    press(HotKey::GoBack);
    m_model.stop(0);
    m_model.record();
    m_model.open(other);
    ASSERT_TRUE(reaches(Phase::editing()));
    EXPECT_EQ(m_model.folder(), folder);
    EXPECT_THAT(m_model.project()->clips, SizeIs(1));
    EXPECT_EQ(m_model.pendingSeek(), 0) << "never before the start";
}

TEST_F(RecordingTest, whatIsNotHeardIsSaidUntilTheClipEnds)
{
    const auto status = [&] { return m_model.status().value_or(QString()).toStdString(); };
    m_server.kill();
    ASSERT_TRUE(pumpUntil([&] { return m_model.status().has_value(); })) << "the connection is lost";
    m_model.record();
    ASSERT_EQ(m_model.phase(), Phase::countdown(3));
    EXPECT_THAT(status(), StartsWith("No microphone was found"));
    EXPECT_TRUE(pumpUntil([&] { return status().starts_with("Other applications' sound is not recorded"); }));
    ASSERT_TRUE(reaches(Phase::recording())) << alert();
    m_model.stop(0);
    ASSERT_TRUE(reaches(Phase::editing()));
    EXPECT_EQ(m_model.status(), std::nullopt);
}

TEST_F(RecordingTest, aScreenThatVanishesEndsTheClip)
{
    m_model.record();
    ASSERT_TRUE(reaches(Phase::recording()));
    m_screen.kill();
    ASSERT_TRUE(reaches(Phase::editing()));
    EXPECT_THAT(alert(), StartsWith("Screen capture stopped: "));
    EXPECT_THAT(onDisk().clips, SizeIs(1));
}

TEST_F(RecordingTest, withoutAScreenNothingStarts)
{
    m_screen.kill();
    m_model.record();
    EXPECT_EQ(m_model.phase(), Phase::setup());
    EXPECT_THAT(alert(), StartsWith("Could not start recording: "));
    EXPECT_FALSE(m_model.project());
}

TEST_F(RecordingTest, aScreenThatVanishesWhileCountingLeavesNothingBehind)
{
    m_model.record();
    const fs::path folder = *m_model.folder();
    m_screen.kill();
    ASSERT_TRUE(reaches(Phase::setup()));
    EXPECT_FALSE(alert().empty());
    EXPECT_FALSE(fs::exists(folder));
}

TEST_F(RecordingTest, aClipThatCannotBeWrittenIsNotStarted)
{
    m_model.record();
    ASSERT_TRUE(reaches(Phase::countdown(1)));
    fs::remove_all(*m_model.folder());
    ASSERT_TRUE(reaches(Phase::setup()));
    EXPECT_THAT(alert(), StartsWith("Could not start recording: "));
    EXPECT_FALSE(m_model.project());
}

TEST_F(RecordingTest, whereNothingCanBeWrittenThatIsSaidBeforeTheCountdown)
{
    std::ofstream(m_root.parent_path()) << "Videos is no folder here";
    m_model.record();
    EXPECT_EQ(
        alert(), "Could not start recording: Nothing can be written into " + m_root.parent_path().string() + ": Not a directory");
    EXPECT_FALSE(m_model.project());
    fs::remove(m_root.parent_path());

    const fs::path moved = writeProject("moved");
    m_model.open(moved);
    fs::remove_all(moved);
    m_model.record(1.0);
    EXPECT_EQ(alert(), "Could not start recording: Nothing can be written into " + moved.string() + ": No such file or directory");
    EXPECT_EQ(totalLength(*m_model.project()), 10);
    EXPECT_THAT(m_phases, ElementsAre(Phase::editing()));
}

TEST_F(RecordingTest, aLayoutWhileTheClipIsSavedLiesAtItsEnd)
{
    m_model.record();
    ASSERT_TRUE(reaches(Phase::recording()));
    ASSERT_TRUE(pumpUntil([&] { return m_model.recorder().elapsed() > 0.6; }));
    QObject::connect(&m_model, &AppModel::phaseChanged, &m_model, [&] {
        if (m_model.phase() == Phase::saving())
            QTimer::singleShot(0, &m_model, [&] { press(HotKey::LayoutScreen); });
    });
    m_model.stop(0);
    ASSERT_TRUE(reaches(Phase::editing()));
    ASSERT_THAT(m_model.project()->layouts, SizeIs(2));
    EXPECT_NEAR(m_model.project()->layouts.back().time, m_model.project()->clips.at(0).duration, 1e-6);
}

TEST_F(RecordingTest, aStartThatFailsWithoutClipsEndsInSetup)
{
    const fs::path folder = writeProject("empty");
    saveProject({ .name = "empty", .layouts = { {} } }, folder);
    m_model.open(folder);
    m_model.record();
    ASSERT_TRUE(reaches(Phase::countdown(2)));
    m_model.cancelStart();
    ASSERT_TRUE(pumpUntil([&] { return m_model.isIdle(); }));
    EXPECT_EQ(m_model.phase(), Phase::setup());
    EXPECT_FALSE(m_model.project());

    m_model.open(writeProject("one"));
    m_model.refreshPlayer();
    m_model.record(0.0);
    ASSERT_TRUE(reaches(Phase::countdown(1)));
    fs::remove_all(*m_model.folder());
    ASSERT_TRUE(pumpUntil([&] { return m_model.isIdle(); }));
    EXPECT_EQ(m_model.phase(), Phase::setup());
    EXPECT_TRUE(m_model.preview()->isEmpty());
    EXPECT_FALSE(m_model.project());
}

TEST_F(RecordingTest, aClipThatCannotBeWrittenToItsEndIsCompletedFromWhatThereIs)
{
    std::optional<test::FileSizeLimit> full;
    const auto recordUntilFull = [&] {
        m_model.record();
        ASSERT_TRUE(reaches(Phase::recording()));
        int x = 0;
        const auto moves = [&] { test::runCommand("xdotool mousemove " + std::to_string(x++ % 300) + " 50"); };
        ASSERT_TRUE(pumpUntil([&] {
            moves();
            return m_model.recorder().elapsed() > 3;
        }));
        full.emplace(1);
        ASSERT_TRUE(pumpUntil([&] {
            moves();
            return !alert().empty();
        }));
    };
    recordUntilFull();
    ASSERT_TRUE(reaches(Phase::editing()));
    EXPECT_THAT(alert(), StartsWith("The last clip could not be saved. "));
    EXPECT_THAT(m_model.project()->clips, IsEmpty());
    full.reset();
    ASSERT_TRUE(pumpUntil([&] { return !m_model.project()->clips.empty(); })) << "as soon as there is room";
    const auto isTold = [&] {
        return m_model.status().value_or(QString()).startsWith(u"A recording that was cut off has been kept");
    };
    EXPECT_TRUE(pumpUntil(isTold));

    QObject::connect(&m_model, &AppModel::alertChanged, &m_model, [&] { full.reset(); });
    recordUntilFull();
    ASSERT_TRUE(reaches(Phase::editing()));
    EXPECT_THAT(alert(), StartsWith("Recording stopped: "));
    ASSERT_THAT(onDisk().clips, SizeIs(2)) << "at once where that can be done";
    for (const Clip& clip : m_model.project()->clips)
        EXPECT_NEAR(test::probeEnd(*m_model.folder() / clip.file, "v:0"), clip.duration, 0.05);
}

TEST_F(RecordingTest, quittingSaysThatTheClipCouldNotBeSaved)
{
    bool isReadyToQuit = false;
    QObject::connect(&m_model, &AppModel::readyToQuit, &m_model, [&] { isReadyToQuit = true; });
    m_model.record();
    ASSERT_TRUE(reaches(Phase::recording()));
    fs::rename(*m_model.folder(), m_folder / "away");
    m_model.quit();
    ASSERT_TRUE(pumpUntil([&] { return isReadyToQuit || !m_model.quitting()->problem().isEmpty(); }));
    EXPECT_THAT(m_model.quitting()->problem().toStdString(), StartsWith("The last clip could not be saved."));
    EXPECT_FALSE(isReadyToQuit);
    EXPECT_EQ(m_model.phase(), Phase::editing());
    m_model.quitting()->quitAllTheSame();
    EXPECT_TRUE(isReadyToQuit);
}

TEST_F(RecordingTest, quittingInTheCountdownLeavesNothingBehind)
{
    bool ready = false;
    QObject::connect(
        &m_model, &AppModel::readyToQuit, &m_model, [&] { ready = true; }, Qt::QueuedConnection);
    m_model.record();
    ASSERT_TRUE(reaches(Phase::countdown(2)));
    m_model.quit();
    ASSERT_TRUE(pumpUntil([&] { return ready; }));
    EXPECT_EQ(m_model.phase(), Phase::setup());
    EXPECT_TRUE(fs::is_empty(m_model.root()));
}

TEST_F(RecordingTest, anExportDeliversTheVideoAndItsDetailsAndACancelledOneLeavesNothing)
{
    recordASecond();
    m_model.edit(
        Rebuild::No, [](Project& project) { project.youtube = { .title = "Intro", .description = "Hello", .tags = "a, b" }; });
    m_model.settings()->setExportHeight(720);
    const fs::path video = m_folder / "Intro.mp4";
    m_model.exportTo(video);
    m_model.cancelExport();
    ASSERT_TRUE(pumpUntil([&] { return !m_model.busy(); }));
    EXPECT_FALSE(fs::exists(video));
    EXPECT_THAT(m_revealed, IsEmpty());

    m_model.exportTo(video);
    ASSERT_TRUE(pumpUntil([&] { return !m_model.busy(); }));
    ASSERT_THAT(alert(), IsEmpty());
    EXPECT_EQ(test::probeStream(video, "v:0")["height"], "720");
    EXPECT_EQ(contents(m_folder / "Intro.youtube.txt").toStdString(), "Intro\n\nHello\n\nTags: a, b\n");
    EXPECT_THAT(m_revealed, ElementsAre(video));
    EXPECT_EQ(m_model.status(), QStringLiteral("Exported to ") + QString::fromStdString(video.string()));
}

} // namespace vantry
