#include "TestProject.h"
#include "base/AppError.h"
#include "media/Sound.h"
#include "render/Exporter.h"
#include "render/PendingFile.h"
#include "support/FileSizeLimit.h"
#include "support/MovieProbe.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>

namespace vantry {

using namespace test;
using testing::AllOf;
using testing::DoubleNear;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Pair;
using testing::ThrowsMessage;

namespace {

constexpr std::uint8_t dark = 40;
constexpr std::uint8_t bright = 220;

class ExportTest : public testing::Test, protected TestProject {
protected:
    ExportTest()
    {
        std::filesystem::create_directory(folder / "out");
        project.layouts.push_back({ .time = 0, .layout = Layout::screen });
    }

    ExportOptions options() const
    {
        return { .project = project, .folder = folder.path(), .destination = m_destination, .height = 180 };
    }

    std::function<void()> exporting() const
    {
        return [this] { Video::exportProject(options()); };
    }

    /// What stands in the destination's folder.
    std::vector<std::string> outcome() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_destination.parent_path()))
            names.push_back(entry.path().filename());
        return names;
    }

    void putOldVideo() const { std::ofstream(m_destination) << "old"; }
    bool isOldVideo() const { return std::filesystem::file_size(m_destination) == 3; }

    std::filesystem::path m_destination = folder / "out" / "Intro.mp4";
};

std::uint8_t flashAt(int flash, int frame)
{
    return frame == flash ? bright : dark;
}

/// Of damage, to a packet of sound.
MATCHER_P2(isAbout, from, to, "")
{
    const auto seconds = [](MediaTime time) { return std::chrono::duration<double>(time).count(); };
    return ExplainMatchResult(DoubleNear(from, 0.025), seconds(arg.range.from), result_listener)
        && ExplainMatchResult(DoubleNear(to, 0.025), seconds(arg.range.to), result_listener);
}

std::vector<std::size_t> flashes(const std::vector<ProbedFrame>& frames)
{
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < frames.size(); ++i)
        if (frames[i].luma > 130)
            found.push_back(i);
    return found;
}

} // namespace

TEST_F(ExportTest, theFileIsWhatVideoSitesTake)
{
    add({ .frames = 50, .screen = [](int frame) { return flashAt(20, frame); }, .microphone = [](int) { return 0.1f; } }, 1.65);
    putOldVideo();
    double last = 0;
    auto wanted = options();
    wanted.height = 720;
    wanted.onProgress = [&](double fraction) {
        EXPECT_GT(fraction, last);
        EXPECT_LE(fraction, 1);
        last = fraction;
    };
    EXPECT_EQ(Video::exportProject(wanted).outcome, ExportOutcome::Finished);
    EXPECT_GT(last, 0);
    EXPECT_THAT(outcome(), ElementsAre("Intro.mp4"));

    EXPECT_THAT(probeStream(m_destination, "v:0"),
        IsSupersetOf({ Pair("codec_name", "h264"), Pair("profile", "High"), Pair("width", "1280"), Pair("height", "720"),
            Pair("pix_fmt", "yuv420p"), Pair("field_order", "progressive"), Pair("color_range", "tv"), Pair("color_space", "bt709"),
            Pair("color_transfer", "bt709"), Pair("color_primaries", "bt709"), Pair("avg_frame_rate", "30/1"),
            Pair("r_frame_rate", "30/1"), Pair("has_b_frames", "2"), Pair("start_time", "0.000000"), Pair("nb_frames", "50") }));
    EXPECT_THAT(probeStream(m_destination, "a:0"),
        IsSupersetOf({ Pair("codec_name", "aac"), Pair("profile", "LC"), Pair("sample_rate", "48000"), Pair("channels", "2"),
            Pair("start_time", "0.000000") }));
    const auto frames = probeFrames(m_destination, "v:0");
    ASSERT_EQ(frames.size(), 50u);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_NEAR(frames[i].time, static_cast<double>(i) / 30, 1e-6);
        EXPECT_EQ(frames[i].isKeyframe, i % 15 == 0) << i;
    }
    const auto boxes = movieBoxes(m_destination);
    EXPECT_LT(std::ranges::find(boxes, "moov"), std::ranges::find(boxes, "mdat"));
    EXPECT_EQ(std::ranges::count(boxes, "moov/trak"), 2);
    EXPECT_EQ(std::ranges::count(boxes, "moov/trak/edts"), 0);
    const auto permissions = std::filesystem::status(m_destination).permissions();
    EXPECT_NE(permissions & std::filesystem::perms::owner_read, std::filesystem::perms::none);
}

TEST_F(ExportTest, soundAndPictureStayTogetherAcrossClips)
{
    // A flash and a click at the same instant of each clip; the second clip's are moved by what is kept of the first.
    const auto clickAt = [](int click) {
        return [click](int sample) { return sample >= click && sample < click + 8 ? 0.9f : 0.0f; };
    };
    add({ .frames = 60, .screen = [](int frame) { return flashAt(12, frame); }, .microphone = clickAt(12 * 1600) }, 1.5);
    add({ .frames = 60, .screen = [](int frame) { return flashAt(7, frame); }, .microphone = clickAt(7 * 1600) }, 1.1);
    Video::exportProject(options());

    EXPECT_THAT(flashes(probeFrames(m_destination, "v:0")), ElementsAre(12, 45 + 7));
    EXPECT_EQ(probeStream(m_destination, "v:0").at("nb_frames"), "78");
    auto sound = probeSound(m_destination, "a:0");
    const auto isNear = [](int sample, int expected) { return std::abs(sample - expected) <= 2; };
    EXPECT_TRUE(isNear(firstClick(sound, 2), 12 * 1600)) << firstClick(sound, 2);
    EXPECT_NEAR(sound[2 * 12 * 1600 + 4], sound[2 * 12 * 1600 + 5], 1e-3); // A mono microphone sounds from both sides.
    sound.erase(sound.begin(), sound.begin() + 2 * 30'000);
    EXPECT_TRUE(isNear(firstClick(sound, 2) + 30'000, (45 + 7) * 1600)) << firstClick(sound, 2);
    EXPECT_NEAR(probeEnd(m_destination, "a:0"), 2.6, 0.03);
}

TEST_F(ExportTest, aSilentProjectHasNoSoundTrack)
{
    add({ .frames = 10, .camera = [](int) { return dark; } }, 0.3);
    Video::exportProject(options());
    EXPECT_EQ(probeStream(m_destination, "v:0").at("nb_frames"), "9");
    EXPECT_TRUE(probeStream(m_destination, "a:0").empty());
}

TEST_F(ExportTest, aFailureIsSaidAndLeavesWhatWasThere)
{
    putOldVideo();
    EXPECT_THAT(exporting(), ThrowsMessage<AppError>("Nothing recorded yet"));
    add({}, 0);
    EXPECT_THAT(exporting(), ThrowsMessage<AppError>("Nothing recorded yet"));
    add({ .frames = 60, .camera = [](int) { return dark; } }, 2);
    add({ .frames = 60 }, 2);
    const auto last = folder / "clip-3.mov";
    std::filesystem::resize_file(last, std::filesystem::file_size(last) / 2);
    EXPECT_THAT(exporting(), ThrowsMessage<AppError>("Cannot read clip-3.mov: The end of the file is missing"));
    std::ofstream(last) << "no movie";
    EXPECT_THAT(exporting(), ThrowsMessage<AppError>(HasSubstr("Cannot read clip-3.mov: ")));
    std::filesystem::remove(last);
    EXPECT_THAT(exporting(), ThrowsMessage<AppError>("Cannot read clip-3.mov: No such file or directory"));
    EXPECT_THAT(outcome(), ElementsAre("Intro.mp4"));
    EXPECT_TRUE(isOldVideo());
}

TEST_F(ExportTest, damagedStretchesAreLeftOutAndToldWithTheirTimesInTheVideo)
{
    const auto hum = [](int sample) { return sample / 24 % 2 == 0 ? 0.3f : -0.3f; };
    add({ .frames = 30 }, 1);
    add({ .frames = 120, .screen = count, .microphone = hum, .system = hum }, 3);
    Video::exportProject(options());
    const auto healthy = probeFrames(m_destination, "v:0");
    const auto clip = folder / "clip-2.mov";
    damagePackets(clip, "v:0", 0.5, 0.51); // The next keyframe is at 20/30.
    damagePackets(clip, "a:0", 1.2, 1.3);
    damagePackets(clip, "a:1", 1.2, 1.3);
    damagePackets(clip, "v:0", 3.5, 3.6); // Which was cut off.
    const auto result = Video::exportProject(options());
    EXPECT_EQ(result.outcome, ExportOutcome::Finished);
    EXPECT_THAT(result.damage,
        ElementsAre(
            AllOf(Field(&Damage::clip, "clip-2.mov"), Field(&Damage::of, Damage::Of::Pictures), isAbout(1.5, 1 + 20 / 30.0)),
            AllOf(Field(&Damage::clip, "clip-2.mov"), Field(&Damage::of, Damage::Of::Sound), isAbout(2.2, 2.3))));

    const auto frames = probeFrames(m_destination, "v:0");
    ASSERT_EQ(frames.size(), 120u);
    for (std::size_t i = 0; i < 90; ++i) {
        const auto shown = i >= 15 && i < 20 ? 14 : i; // Meanwhile the picture stands still.
        ASSERT_NEAR(frames.at(30 + i).luma, healthy.at(30 + shown).luma, 1) << i;
    }
    const auto sound = probeSound(m_destination, "a:0");
    const auto levelAt = [&](double time) { return std::abs(sound.at(2 * static_cast<std::size_t>(time * sampleRate))); };
    for (const double time : { 2.1, 2.4, 3.9 })
        EXPECT_NEAR(levelAt(time), 0.6, 0.2) << time;
    EXPECT_NEAR(levelAt(2.25), 0, 0.01);
}

TEST_F(ExportTest, aCancelledExportLeavesNothing)
{
    add({ .frames = 300 }, 10);
    std::stop_source stop;
    auto wanted = options();
    wanted.cancel = stop.get_token();
    wanted.onProgress = [&](double) { stop.request_stop(); };
    EXPECT_EQ(Video::exportProject(wanted).outcome, ExportOutcome::Cancelled);
    EXPECT_TRUE(outcome().empty());

    // Before it began.
    putOldVideo();
    EXPECT_EQ(Video::exportProject(wanted).outcome, ExportOutcome::Cancelled);
    EXPECT_THAT(outcome(), ElementsAre("Intro.mp4"));
    EXPECT_TRUE(isOldVideo());
}

TEST_F(ExportTest, aFullDiskIsSaidInClearWordsAndLeavesNothing)
{
    add({ .frames = 120, .microphone = [](int sample) { return static_cast<float>(sample % 97) / 97; } }, 4);
    {
        const test::FileSizeLimit disk(50'000);
        EXPECT_THAT(exporting(), ThrowsMessage<AppError>("Could not write Intro.mp4: File too large"));
    }
    EXPECT_TRUE(outcome().empty());
}

TEST_F(ExportTest, whatAKilledOneLeftIsRemovedAndARunningOneIsNot)
{
    const auto left = folder / "out" / ".vantry-export-Xy12Zz", others = folder / "out" / ".vantry-export-of-mine";
    for (const auto& path : { left, others }) {
        std::filesystem::create_directory(path);
        std::ofstream(path / "Intro.mp4") << "half";
    }
    PendingFile running(m_destination);
    std::ofstream(running.path()) << "whole";
    EXPECT_FALSE(std::filesystem::exists(left));
    {
        const PendingFile another(folder / "out" / "Other.mp4");
    }
    PendingFile::removeLeftovers(folder / "out");
    running.moveIntoPlace();
    EXPECT_THAT(outcome(), testing::UnorderedElementsAre("Intro.mp4", running.path().parent_path().filename(), others.filename()));
}

TEST_F(ExportTest, aPlaceThatCannotBeWrittenIsSaidAtOnce)
{
    add({ .frames = 3 }, 0.1);
    m_destination = folder / "none" / "Intro.mp4";
    EXPECT_THAT(exporting(), ThrowsMessage<AppError>("Could not write Intro.mp4: No such file or directory"));
    m_destination = folder / "out";
    EXPECT_THAT(exporting(), ThrowsMessage<AppError>("Could not write out: Is a directory"));
}

} // namespace vantry
