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

    /// Waits until the status begins so.
    bool tells(const std::string& text)
    {
        return test::pumpUntil([&] { return m_model.status().value_or(QString()).startsWith(QString::fromStdString(text)); });
    }

    static fs::path journalOf(const fs::path& movie)
    {
        return movie.parent_path() / std::string(".").append(movie.filename().string()).append(".journal");
    }
};

} // namespace

TEST_F(SalvageTest, aClipThatWasCutOffComesIntoTheOpenProject)
{
    // Wherever it is, and by whatever name it was opened.
    const auto open = writeProject("../open");
    writeCutOffClip(open / "clip-8.mov");
    m_model.open(open / "");
    ASSERT_TRUE(tells("A recording that was cut off has been kept: open"));
    EXPECT_THAT(m_model.project()->clips, ElementsAre(Field(&Clip::file, "clip-1.mov"), Field(&Clip::file, "clip-8.mov")));
    EXPECT_NEAR(onDisk().clips.at(1).keep, 2, 0.1);
    EXPECT_THAT(readTracks(open / "clip-8.mov"), SizeIs(1));
    EXPECT_FALSE(fs::exists(journalOf(open / "clip-8.mov")));
}

TEST_F(SalvageTest, whileSomethingIsRecordedItWaits)
{
    const auto open = writeProject("open");
    m_model.open(open);
    writeCutOffClip(open / "clip-8.mov");
    m_model.setPhase(Phase::recording());
    std::optional<Phase> added;
    QObject::connect(&m_model, &AppModel::projectChanged, &m_model, [&] { added = m_model.phase(); });
    m_model.salvage();
    ASSERT_TRUE(test::pumpUntil([&] {
        try {
            return readTracks(open / "clip-8.mov").size() == 1;
        } catch (const std::exception&) {
            return false;
        }
    })) << "it is completed meanwhile";
    m_model.setPhase(Phase::saving());
    m_model.setPhase(Phase::editing());
    ASSERT_TRUE(tells("A recording that was cut off has been kept: open"));
    EXPECT_EQ(added, Phase::editing());
    EXPECT_THAT(m_model.project()->clips, SizeIs(2));
}

TEST_F(SalvageTest, aProjectWhoseFirstClipWasCutOffIsOpenedWithIt)
{
    writeCutOffClip(m_root / "first/clip-8.mov");
    m_model.open(m_root / "first");
    ASSERT_TRUE(test::pumpUntil([&] { return m_model.phase() == Phase::editing(); })) << alert();
    EXPECT_THAT(m_model.project()->clips, ElementsAre(Field(&Clip::file, "clip-8.mov")));
    EXPECT_EQ(alert(), "");
    EXPECT_THAT(onDisk().clips, SizeIs(1));
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
    ASSERT_TRUE(tells("A recording that was cut off has been kept: broken"));
    EXPECT_THAT(loadProject(broken).clips, ElementsAre(Field(&Clip::keep, 1)));
    EXPECT_FALSE(fs::exists(journalOf(broken / "clip-7.mov")));
}

} // namespace vantry
