#include "media/Muxer.h"
#include "media/TrackInfo.h"
#include "media/VideoEncoder.h"
#include "model/ModelTest.h"

#include <gmock/gmock.h>

#include <fstream>

namespace vantry {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::SizeIs;

namespace {

class SalvageTest : public test::ModelTest {
protected:
    /// What a program leaves that dies in the middle of a recording: about two seconds of it.
    static void writeCutOffClip(const fs::path& file)
    {
        fs::create_directories(file.parent_path());
        VideoEncoder video({ .width = 64, .height = 48, .bitRate = 1'000'000, .preset = "ultrafast" });
        Muxer muxer(file, MovieFormat::Clip);
        const int track = muxer.addTrack(video);
        muxer.start();
        const auto sink = [&](Packet packet) { muxer.write(track, std::move(packet)); };
        for (int i = 0; i < 90; ++i)
            video.encode(PictureBuffer(64, 48).share(), i * frameDuration, PictureKind::Any, sink);
        video.finish(sink);
    }

    std::string status() const { return m_model.status().value_or(QString()).toStdString(); }

    /// Waits until the status speaks of a folder.
    bool tells(const std::string& folder)
    {
        return test::pumpUntil([&] { return status().find(folder) != std::string::npos; });
    }

    static fs::path journalOf(const fs::path& movie)
    {
        return movie.parent_path() / ("." + movie.filename().string() + ".journal");
    }
};

} // namespace

TEST_F(SalvageTest, aClipThatWasCutOffComesIntoItsProject)
{
    const auto first = m_root / "2026-11-16T202503";
    writeCutOffClip(first / "clip-7.mov");
    int listed = 0;
    QObject::connect(&m_model, &AppModel::recentChanged, &m_model, [&] { ++listed; });
    m_model.salvage();
    ASSERT_TRUE(tells("A recording that was cut off has been kept: 2026-11-16T202503"));
    EXPECT_EQ(listed, 1);
    EXPECT_THAT(m_model.recent(), ElementsAre(first)) << "it had no project yet";
    const Project project = loadProject(first);
    ASSERT_THAT(project.clips, SizeIs(1));
    EXPECT_EQ(project.clips[0].file, "clip-7.mov");
    EXPECT_NEAR(project.clips[0].keep, 2, 0.1);
    EXPECT_THAT(readTracks(first / "clip-7.mov"), SizeIs(1));
    EXPECT_THAT(project.name, HasSubstr("Recording "));
    EXPECT_THAT(project.layouts, SizeIs(1));
    EXPECT_FALSE(fs::exists(journalOf(first / "clip-7.mov")));

    // One that is open sees it at once.
    const auto open = writeProject("open");
    writeCutOffClip(open / "clip-8.mov");
    m_model.open(open);
    m_model.salvage();
    ASSERT_TRUE(tells("kept: open"));
    EXPECT_THAT(m_model.project()->clips, ElementsAre(Field(&Clip::file, "clip-1.mov"), Field(&Clip::file, "clip-8.mov")));
    EXPECT_THAT(loadProject(open).clips, SizeIs(2));
}

TEST_F(SalvageTest, whatCannotBeKeptIsSaidAndStays)
{
    const auto broken = m_root / "broken";
    writeCutOffClip(broken / "clip-7.mov");
    std::ofstream(broken / "project.json") << "{";
    m_model.salvage();
    ASSERT_TRUE(tells("A recording that was cut off could not be kept: broken: "));
    EXPECT_TRUE(fs::exists(journalOf(broken / "clip-7.mov"))) << "for the next time";

    // The project was mended, and knows the clip by now.
    Project project{ .clips = { { .file = "clip-7.mov", .duration = 2, .keep = 1 } } };
    saveProject(project, broken);
    m_model.salvage();
    ASSERT_TRUE(tells("has been kept: broken"));
    EXPECT_THAT(loadProject(broken).clips, ElementsAre(Field(&Clip::keep, 1)));
    EXPECT_FALSE(fs::exists(journalOf(broken / "clip-7.mov")));
}

} // namespace vantry
