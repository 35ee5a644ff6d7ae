#include "model/PreviewFlow.h"

#include "model/ModelTest.h"
#include "support/TestProject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace vantry {

namespace fs = std::filesystem;
using test::frameOfBar;
using test::pumpUntil;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class PreviewTest : public test::ModelTest {
protected:
    fs::path writeMovie(const std::string& name, double length = 2)
    {
        test::writeTestProject(m_root / name, length);
        return m_root / name;
    }

    /// Covers it with white, which takes a process of its own to be drawn.
    static fs::path slowToShow(const fs::path& folder)
    {
        Project project = loadProject(folder);
        const std::string html = "<div style='background:white;height:900px'>" + project.name + "</div>";
        project.overlays = { { .duration = 2, .kind = OverlayKind::text, .html = html, .width = 1 } };
        saveProject(project, folder);
        return folder;
    }

    static bool isWhite(const Picture& picture)
    {
        return picture && picture.plane(PlaneY).row(picture.height() / 2)[picture.width() / 2] > 230;
    }

    /// Opens it as the editor does.
    void open(const fs::path& folder)
    {
        m_model.open(folder);
        m_model.refreshPlayer();
    }

    bool showsSoon(int frame)
    {
        return pumpUntil([&] { return frameOfBar(m_preview.picture()) == frame; });
    }

    PreviewFlow& m_preview = *m_model.preview();
};

TEST_F(PreviewTest, startsAtThePendingSeekAndKeepsThePlayheadAfterwards)
{
    open(writeMovie("one"));
    EXPECT_TRUE(showsSoon(0));
    EXPECT_DOUBLE_EQ(m_preview.length(), 2);
    EXPECT_EQ(m_model.pendingSeek(), std::nullopt);

    m_model.setPendingSeek(1);
    m_model.refreshPlayer();
    EXPECT_TRUE(showsSoon(30));
    EXPECT_EQ(m_model.playhead(), 1);
    EXPECT_EQ(m_model.pendingSeek(), std::nullopt);

    m_model.seek(0.5);
    m_model.edit(Rebuild::Yes, [](Project& project) { project.clips[0].keep = 1.5; });
    m_model.refreshPlayer();
    EXPECT_TRUE(pumpUntil([&] { return m_preview.length() == 1.5; }));
    EXPECT_TRUE(showsSoon(15));
    EXPECT_EQ(m_model.playhead(), 0.5);
    EXPECT_THAT(alert(), IsEmpty());
}

TEST_F(PreviewTest, goesOnWithWhatItHasWhenTheProjectCannotBeShown)
{
    const fs::path folder = writeMovie("one");
    open(folder);
    ASSERT_TRUE(showsSoon(0));
    m_model.seek(0.5);
    ASSERT_TRUE(showsSoon(15));
    fs::rename(folder / "clip-1.mov", folder / "elsewhere.mov");
    m_model.setPendingSeek(1);
    m_model.refreshPlayer();
    ASSERT_TRUE(pumpUntil([&] { return m_model.alert().has_value(); }));
    EXPECT_THAT(alert(), StartsWith("Preview failed: "));
    EXPECT_EQ(m_preview.length(), 2);
    EXPECT_EQ(frameOfBar(m_preview.picture()), 15);
    EXPECT_EQ(m_model.playhead(), 0.5);

    // Once it can be shown again, it is where it should have been.
    fs::rename(folder / "elsewhere.mov", folder / "clip-1.mov");
    m_model.refreshPlayer();
    EXPECT_TRUE(showsSoon(30));
}

TEST_F(PreviewTest, leavesOutWhatIsOvertaken)
{
    const fs::path slow = slowToShow(writeMovie("slow", 2)), broken = slowToShow(writeProject("broken"));
    const fs::path quick = writeMovie("quick", 1), slower = slowToShow(writeMovie("slower", 1.5));
    std::vector<double> lengths;
    QObject::connect(&m_preview, &PreviewFlow::lengthChanged, &m_model, [&] { lengths.push_back(m_preview.length()); });
    open(slow);
    open(broken);
    open(quick);
    ASSERT_TRUE(pumpUntil([&] { return !lengths.empty(); }));
    open(slow);
    m_model.newRecording();
    // What comes last has its overlay made last.
    open(slower);
    ASSERT_TRUE(pumpUntil([&] { return m_preview.length() == 1.5; }));
    EXPECT_THAT(lengths, ElementsAre(1, 0, 1.5));
    EXPECT_THAT(alert(), IsEmpty());
    m_model.seek(0.5);
    EXPECT_TRUE(pumpUntil([&] { return isWhite(m_preview.picture()); })) << "it has the overlay";
}

TEST_F(PreviewTest, isEmptyWithoutClips)
{
    const fs::path folder = writeMovie("one");
    open(folder);
    ASSERT_TRUE(showsSoon(0));
    m_model.newRecording();
    EXPECT_TRUE(m_preview.isEmpty());
    EXPECT_EQ(m_model.playhead(), 0);

    open(folder);
    ASSERT_TRUE(showsSoon(0));
    m_model.edit(Rebuild::Yes, [](Project& project) { project.clips.clear(); });
    m_model.refreshPlayer();
    EXPECT_EQ(frameOfBar(m_preview.picture()), -1);
    m_preview.toggle();
    m_preview.step(1);
    EXPECT_TRUE(m_preview.isEmpty());
    EXPECT_THAT(alert(), IsEmpty());
}

TEST_F(PreviewTest, seeksToEveryTimeAndStepsFromFrameToFrame)
{
    m_model.seek(3);
    EXPECT_EQ(m_model.playhead(), 3) << "without a project as well";
    open(writeMovie("one"));
    ASSERT_TRUE(showsSoon(0));
    m_model.seek(12.3);
    EXPECT_EQ(m_model.playhead(), 12.3);
    EXPECT_TRUE(showsSoon(59)) << "the last one";
    for (const double time : { -3.0, std::nan("") }) {
        m_model.seek(time);
        EXPECT_EQ(m_model.playhead(), 0);
        EXPECT_TRUE(showsSoon(0));
        m_model.seek(1.1);
        ASSERT_TRUE(showsSoon(33));
    }

    m_model.seek(0.99); // In the middle of frame 29.
    m_preview.step(1);
    EXPECT_TRUE(showsSoon(30));
    for (int frame = 29; frame >= 20; --frame)
        m_preview.step(-1);
    EXPECT_TRUE(showsSoon(20));
    m_model.seek(2);
    m_preview.step(1);
    EXPECT_EQ(m_model.playhead(), 2) << "there is nothing behind the end";
    m_preview.step(-1);
    EXPECT_TRUE(showsSoon(58));
}

TEST_F(PreviewTest, thePlayheadFollowsPlaybackUntilARecordingBegins)
{
    open(writeMovie("one"));
    ASSERT_TRUE(showsSoon(0));
    std::vector<double> times;
    QObject::connect(&m_model, &AppModel::playheadChanged, &m_preview, [&] { times.push_back(m_model.playhead()); });
    m_preview.toggle();
    EXPECT_TRUE(m_preview.isPlaying());
    ASSERT_TRUE(pumpUntil([&] { return !m_preview.isPlaying(); }));
    EXPECT_EQ(m_model.playhead(), 2);
    EXPECT_GE(times.size(), 3) << "ten a second where the machine keeps up";
    EXPECT_TRUE(std::ranges::is_sorted(times));

    m_preview.toggle();
    EXPECT_TRUE(m_preview.isPlaying());
    m_model.setPhase(Phase::countdown(3));
    EXPECT_FALSE(m_preview.isPlaying());
}

TEST_F(PreviewTest, playsOnOverARebuildAndAfterItWasHeld)
{
    open(writeMovie("one", 5));
    ASSERT_TRUE(showsSoon(0));
    m_preview.toggle();
    ASSERT_TRUE(pumpUntil([&] { return m_model.playhead() > 0; }));
    double latest = 0;
    bool wentBack = false;
    QObject::connect(&m_model, &AppModel::playheadChanged, &m_preview,
        [&] { wentBack |= m_model.playhead() < std::exchange(latest, m_model.playhead()); });
    m_model.edit(Rebuild::Yes, [](Project& project) { project.clips[0].keep = 4; });
    m_model.refreshPlayer();
    ASSERT_TRUE(pumpUntil([&] { return m_preview.length() == 4; }));
    EXPECT_TRUE(m_preview.isPlaying());
    const double then = m_model.playhead();
    EXPECT_TRUE(pumpUntil([&] { return m_model.playhead() > then + 0.2; }));
    EXPECT_FALSE(wentBack);

    m_preview.hold();
    EXPECT_FALSE(m_preview.isPlaying());
    m_preview.release();
    EXPECT_TRUE(m_preview.isPlaying());
    m_preview.toggle();
    m_preview.hold();
    m_preview.release();
    EXPECT_FALSE(m_preview.isPlaying()) << "it did not play when it was held";
}

} // namespace vantry
