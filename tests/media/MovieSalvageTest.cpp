#include "media/MovieSalvage.h"

#include "base/AppError.h"
#include "media/AudioEncoder.h"
#include "media/Muxer.h"
#include "media/TrackInfo.h"
#include "media/VideoEncoder.h"
#include "support/Command.h"
#include "support/MovieProbe.h"
#include "support/TemporaryFolder.h"
#include "support/TestSamples.h"

#include <gmock/gmock.h>

#include <fstream>
#include <optional>
#include <sstream>

namespace vantry {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr int recorded = 5; ///< Seconds.

/// A clip of four tracks, the camera late, its pictures all different. It is cut off unless it is finished.
std::unique_ptr<Muxer> record(const fs::path& file)
{
    VideoEncoder screen({ .codec = VideoCodec::Hevc, .width = 320, .height = 180, .bitRate = 8'000'000, .preset = "ultrafast" });
    VideoEncoder camera({ .width = 320, .height = 180, .bitRate = 1'000'000, .preset = "ultrafast" });
    AudioEncoder microphone({ .channels = 1, .bitRate = 160'000 }), system({ .channels = 2, .bitRate = 192'000 });
    auto muxer = std::make_unique<Muxer>(file, MovieFormat::Clip);
    const auto into = [&muxer](const auto& encoder) {
        return [&muxer = *muxer, track = muxer->addTrack(encoder)](Packet packet) { muxer.write(track, std::move(packet)); };
    };
    const PacketSink screens = into(screen), cameras = into(camera), voices = into(microphone), sounds = into(system);
    muxer->start();
    for (int i = 0; i < recorded * 30; ++i) {
        screen.encode(test::grey(20 + i), i * frameDuration, PictureKind::Any, screens);
        if (i > 40)
            camera.encode(test::grey(20 + i), i * frameDuration, PictureKind::Any, cameras);
        microphone.encode(test::soundWithClick(1, 1600, 10 * i), voices);
        system.encode(test::soundWithClick(2, 1600, 10 * i), sounds);
    }
    screen.finish(screens);
    camera.finish(cameras);
    microphone.finish(voices);
    system.finish(sounds);
    return muxer;
}

fs::path cutOff(const fs::path& file)
{
    record(file).reset();
    return file;
}

/// When each packet of a stream is shown, and what is in it.
std::vector<std::string> packets(const fs::path& movie, const std::string& stream)
{
    std::istringstream lines(test::runCommand("ffmpeg -v error -i '" + movie.string() + "' -map 0:" + stream
        + " -c copy -f framehash -hash md5 - | grep -v '^#' | awk -F, '{ print $2 $3 $5 $6 }'"));
    std::vector<std::string> packets;
    for (std::string line; std::getline(lines, line);)
        packets.push_back(line);
    return packets;
}

fs::path journalOf(const fs::path& movie)
{
    return movie.parent_path() / ("." + movie.filename().string() + ".journal");
}

} // namespace

TEST(MovieSalvage, aClipThatWasCutOffHasAllThatReachedTheDisk)
{
    const test::TemporaryFolder folder;
    const auto whole = folder / "whole.mov", movie = cutOff(folder / "a: b.mov");
    record(whole)->finish(std::chrono::seconds(recorded));
    EXPECT_THROW(readTracks(movie), AppError);
    EXPECT_THAT(cutOffMovies(folder.path()), ElementsAre(movie)) << "nothing is left of the one that was finished";

    const auto length = completeMovie(movie);
    ASSERT_TRUE(length);
    EXPECT_GT(*length, recorded - 1.2) << "the last second waits in memory";
    EXPECT_EQ(readTracks(movie).size(), 4U);
    for (const auto* stream : { "v:0", "v:1", "a:0", "a:1" }) {
        auto expected = packets(whole, stream);
        const auto found = packets(movie, stream);
        ASSERT_GT(found.size(), 60U) << stream;
        ASSERT_LE(found.size(), expected.size());
        expected.resize(found.size());
        EXPECT_EQ(found, expected) << stream;
    }
    for (const auto* stream : { "v:0", "v:1" })
        EXPECT_NEAR(test::probeEnd(movie, stream), *length, 2e-5) << "the last picture stays";
    EXPECT_EQ(test::probeFrames(movie, "v:0").size(), packets(movie, "v:0").size()) << "all can be decoded";

    // Had this been cut off too.
    EXPECT_EQ(completeMovie(movie), length);
    EXPECT_EQ(readTracks(movie).size(), 4U);
    forgetJournal(movie);
    EXPECT_THAT(cutOffMovies(folder.path()), IsEmpty());
}

TEST(MovieSalvage, whatDidNotReachTheDiskIsLeftOut)
{
    const test::TemporaryFolder folder;
    const auto movie = cutOff(folder / "clip.mov");
    fs::resize_file(movie, fs::file_size(movie) / 2);
    const auto length = completeMovie(movie);
    ASSERT_TRUE(length);
    EXPECT_NEAR(*length, (recorded - 1) / 2.0, 1);
    EXPECT_EQ(test::probeFrames(movie, "v:0").size(), packets(movie, "v:0").size());

    const auto behind = cutOff(folder / "behind.mov");
    fs::resize_file(journalOf(behind), fs::file_size(journalOf(behind)) / 2 + 7);
    EXPECT_TRUE(completeMovie(behind)) << "in the middle of an entry";
    EXPECT_EQ(readTracks(behind).size(), 4U);
}

TEST(MovieSalvage, aClipInTheMakingIsLeftAlone)
{
    const test::TemporaryFolder folder;
    const auto movie = folder / "clip.mov";
    const auto muxer = record(movie);
    EXPECT_THAT(cutOffMovies(folder.path()), IsEmpty());
    EXPECT_EQ(completeMovie(movie), std::nullopt);
    muxer->finish(std::chrono::seconds(recorded));
    EXPECT_NEAR(test::probeEnd(movie, "v:0"), recorded, 2e-5);
    EXPECT_FALSE(fs::exists(journalOf(movie)));
}

TEST(MovieSalvage, aJournalThatCannotBeUnderstoodChangesNothing)
{
    const test::TemporaryFolder folder;
    const auto movie = cutOff(folder / "clip.mov");
    const auto size = fs::file_size(movie);
    const auto journal = test::runCommand("cat '" + journalOf(movie).string() + "'");
    const auto isRefused = [&](const std::string& bytes) {
        std::ofstream(journalOf(movie), std::ios::binary) << bytes;
        return completeMovie(movie) == std::nullopt && fs::file_size(movie) == size;
    };
    auto ofAnotherLibrary = journal;
    ++ofAnotherLibrary[16];
    for (const auto& bytes :
        { std::string(), std::string("nonsense"), std::string(100'000, 'x'), journal.substr(0, 300), ofAnotherLibrary })
        EXPECT_TRUE(isRefused(bytes)) << bytes.substr(0, 20);
    std::ofstream(journalOf(movie), std::ios::binary) << journal;
    EXPECT_TRUE(completeMovie(movie));
    EXPECT_THAT(cutOffMovies(folder / "missing"), IsEmpty());
}

} // namespace vantry
