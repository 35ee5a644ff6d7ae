#include "media/MovieSalvage.h"

#include "base/AppError.h"
#include "media/AudioEncoder.h"
#include "media/Muxer.h"
#include "media/TrackInfo.h"
#include "media/VideoEncoder.h"
#include "support/Command.h"
#include "support/MovieProbe.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <fstream>
#include <optional>
#include <sstream>

namespace vantry {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

namespace {

constexpr int recorded = 5; ///< Seconds.

enum class Ending { Finished, CutOff };

/// A clip of four tracks, the camera late, its pictures all different.
class Recording {
public:
    explicit Recording(const fs::path& file)
        : m_muxer(file, MovieFormat::Clip)
    {
        m_screenTrack = m_muxer.addTrack(m_screen);
        m_cameraTrack = m_muxer.addTrack(m_camera);
        m_microphoneTrack = m_muxer.addTrack(m_microphone);
        m_systemTrack = m_muxer.addTrack(m_system);
        m_muxer.start();
        for (int i = 0; i < recorded * 30; ++i)
            encodeFrame(i);
        m_screen.finish(into(m_screenTrack));
        m_camera.finish(into(m_cameraTrack));
        m_microphone.finish(into(m_microphoneTrack));
        m_system.finish(into(m_systemTrack));
    }

    void finish() { m_muxer.finish(std::chrono::seconds(recorded)); }

private:
    PacketSink into(int track)
    {
        return [this, track](Packet packet) { m_muxer.write(track, std::move(packet)); };
    }

    static Picture picture(int frame)
    {
        PictureBuffer buffer(320, 180);
        buffer.fill(static_cast<std::uint8_t>(20 + frame), 128, 128);
        return std::move(buffer).share();
    }

    static Sound tone(int channels)
    {
        Sound sound{ .channels = channels, .samples = {} };
        for (int i = 0; i < 1600 * channels; ++i)
            sound.samples.push_back(0.2F * static_cast<float>(i % 97) / 97);
        return sound;
    }

    void encodeFrame(int i)
    {
        m_screen.encode(picture(i), i * frameDuration, PictureKind::Any, into(m_screenTrack));
        if (i > 40)
            m_camera.encode(picture(i), i * frameDuration, PictureKind::Any, into(m_cameraTrack));
        m_microphone.encode(tone(1), into(m_microphoneTrack));
        m_system.encode(tone(2), into(m_systemTrack));
    }

    VideoEncoder m_screen{
        { .codec = VideoCodec::Hevc, .width = 320, .height = 180, .bitRate = 8'000'000, .preset = "ultrafast" }
    };
    VideoEncoder m_camera{ { .width = 320, .height = 180, .bitRate = 1'000'000, .preset = "ultrafast" } };
    AudioEncoder m_microphone{ { .channels = 1, .bitRate = 160'000 } };
    AudioEncoder m_system{ { .channels = 2, .bitRate = 192'000 } };
    Muxer m_muxer;
    int m_screenTrack = 0;
    int m_cameraTrack = 0;
    int m_microphoneTrack = 0;
    int m_systemTrack = 0;
};

fs::path record(const fs::path& file, Ending ending)
{
    Recording recording(file);
    if (ending == Ending::Finished)
        recording.finish();
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
    const auto whole = record(folder / "whole.mov", Ending::Finished);
    const auto movie = record(folder / "a: b.mov", Ending::CutOff);
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
    const auto movie = record(folder / "clip.mov", Ending::CutOff);
    fs::resize_file(movie, fs::file_size(movie) / 2);
    const auto length = completeMovie(movie);
    ASSERT_TRUE(length);
    EXPECT_NEAR(*length, (recorded - 1) / 2.0, 1);
    EXPECT_EQ(test::probeFrames(movie, "v:0").size(), packets(movie, "v:0").size());

    const auto behind = record(folder / "behind.mov", Ending::CutOff);
    fs::resize_file(journalOf(behind), fs::file_size(journalOf(behind)) / 2 + 7);
    EXPECT_TRUE(completeMovie(behind)) << "in the middle of an entry";
    EXPECT_EQ(readTracks(behind).size(), 4U);
}

TEST(MovieSalvage, aClipInTheMakingIsLeftAlone)
{
    const test::TemporaryFolder folder;
    const auto movie = folder / "clip.mov";
    Recording recording(movie);
    EXPECT_THAT(cutOffMovies(folder.path()), IsEmpty());
    EXPECT_EQ(completeMovie(movie), std::nullopt);
    recording.finish();
    EXPECT_NEAR(test::probeEnd(movie, "v:0"), recorded, 2e-5);
    EXPECT_FALSE(fs::exists(journalOf(movie)));
}

TEST(MovieSalvage, aJournalThatCannotBeUnderstoodChangesNothing)
{
    const test::TemporaryFolder folder;
    const auto movie = record(folder / "clip.mov", Ending::CutOff);
    const auto size = fs::file_size(movie);
    const auto journal = test::runCommand("cat '" + journalOf(movie).string() + "'");
    const auto isRefused = [&](const std::string& bytes) {
        std::ofstream(journalOf(movie), std::ios::binary) << bytes;
        return completeMovie(movie) == std::nullopt && fs::file_size(movie) == size;
    };
    EXPECT_TRUE(isRefused(""));
    EXPECT_TRUE(isRefused("nonsense"));
    EXPECT_TRUE(isRefused(std::string(100'000, 'x')));
    EXPECT_TRUE(isRefused(journal.substr(0, 300)));
    auto ofAnotherLibrary = journal;
    ++ofAnotherLibrary[16];
    EXPECT_TRUE(isRefused(ofAnotherLibrary));
    std::ofstream(journalOf(movie), std::ios::binary) << journal;
    EXPECT_TRUE(completeMovie(movie));
    EXPECT_THAT(cutOffMovies(folder / "missing"), IsEmpty());
}

} // namespace vantry
