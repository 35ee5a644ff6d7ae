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

/// All that a movie says of its tracks, apart from how long and how large they are.
std::string descriptions(const fs::path& movie)
{
    return test::runCommand("ffprobe -v error -show_streams -show_data_hash md5 '" + movie.string()
        + "' | grep -vE '^(duration|nb_frames|bit_rate|avg_frame_rate|r_frame_rate|extradata_size)'");
}

fs::path journalOf(const fs::path& movie)
{
    return movie.parent_path() / std::string(".").append(movie.filename().string()).append(".journal");
}

} // namespace

TEST(MovieSalvage, aClipThatWasCutOffHasAllThatReachedTheDisk)
{
    const test::TemporaryFolder folder;
    const auto whole = folder / "whole.mov", movie = cutOff(folder / "a: b.mov");
    record(whole)->finish(std::chrono::seconds(recorded));
    forgetJournal(whole);
    EXPECT_THROW(readTracks(movie), AppError);
    EXPECT_THAT(cutOffMovies(folder.path()), ElementsAre(movie));

    const auto length = completeMovie(movie);
    ASSERT_TRUE(length);
    EXPECT_GT(*length, recorded - 1.2) << "the last second waits in memory";
    EXPECT_EQ(descriptions(movie), descriptions(whole));
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
}

TEST(MovieSalvage, whatAPowerCutLeftUnwrittenIsLeftOut)
{
    const test::TemporaryFolder folder;
    const auto movie = cutOff(folder / "clip.mov");
    const auto size = fs::file_size(movie);
    fs::resize_file(movie, size * 3 / 4);
    fs::resize_file(movie, size); // With zeros.
    const auto entries = fs::file_size(journalOf(movie));
    fs::resize_file(journalOf(movie), entries - 20); // In the middle of one.
    fs::resize_file(journalOf(movie), entries + 4096);
    ASSERT_TRUE(completeMovie(movie));
    EXPECT_LE(fs::file_size(movie), size * 3 / 4 + 20'000) << "and the index";
    EXPECT_EQ(test::runCommand("ffmpeg -v error -i '" + movie.string() + "' -map 0 -f framehash - 2>&1 >/dev/null"), "");
}

TEST(MovieSalvage, aDamagedJournalIsRefusedAndChangesNothing)
{
    const test::TemporaryFolder folder;
    const auto movie = cutOff(folder / "clip.mov");
    const auto size = fs::file_size(movie);
    const auto journal = test::runCommand("cat '" + journalOf(movie).string() + "'");
    const auto isRefused = [&](const std::string& bytes, const char* why = "is damaged") {
        std::ofstream(journalOf(movie), std::ios::binary) << bytes;
        EXPECT_THAT([&] { completeMovie(movie); }, testing::ThrowsMessage<AppError>(testing::EndsWith(why)));
        return fs::file_size(movie) == size;
    };
    const auto changed = [&](std::size_t place, char byte) {
        auto bytes = journal;
        bytes[place] = byte;
        return bytes;
    };
    EXPECT_TRUE(isRefused(""));
    EXPECT_TRUE(isRefused("nonsense"));
    EXPECT_TRUE(isRefused(std::string(100'000, 'x'), "is no journal of a recording"));
    EXPECT_TRUE(isRefused(journal.substr(0, 300)));
    constexpr auto* stranger = "was written by another version of Vantry or of FFmpeg";
    EXPECT_TRUE(isRefused(changed(15, '1'), stranger));
    EXPECT_TRUE(isRefused(changed(16, '\x7f'), stranger));
    EXPECT_TRUE(isRefused(changed(24, '\x03'))) << "a track is missing";
    constexpr std::size_t head = 36;
    EXPECT_TRUE(isRefused(changed(head + 4, '\x7f'))) << "an unknown codec";
    constexpr std::size_t entrySize = 48;
    const auto middle = journal.size() - 100 * entrySize;
    EXPECT_TRUE(isRefused(changed(middle, '\x09'))) << "no such track";
    EXPECT_TRUE(isRefused(changed(middle + 5, '\x20'))) << "a flag that the library would act on";
    EXPECT_TRUE(isRefused(changed(middle + 15, '\x7f'))) << "a time far away";
    EXPECT_TRUE(isRefused(changed(middle + 35, '\x7f'))) << "a packet that lies elsewhere";

    std::ofstream(journalOf(movie), std::ios::binary) << journal;
    EXPECT_TRUE(completeMovie(movie));
    EXPECT_THAT(cutOffMovies(folder / "missing"), IsEmpty());
}

TEST(MovieSalvage, onlyFilesAreJournalsAndMovies)
{
    const test::TemporaryFolder folder;
    const auto movie = cutOff(folder / "clip.mov");
    const auto elsewhere = folder / "elsewhere.mov";
    fs::rename(movie, elsewhere);
    fs::create_symlink(elsewhere, movie);
    const auto size = fs::file_size(elsewhere);
    EXPECT_THROW(completeMovie(movie), AppError);
    EXPECT_EQ(fs::file_size(elsewhere), size);
    test::runCommand("mkfifo '" + (folder / ".pipe.mov.journal").string() + "'; touch '" + (folder / "pipe.mov").string() + "'");
    EXPECT_EQ(completeMovie(folder / "pipe.mov"), std::nullopt);
}

} // namespace vantry
