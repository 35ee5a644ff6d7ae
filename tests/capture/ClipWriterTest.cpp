#include "capture/ClipWriter.h"

#include "base/AppError.h"
#include "media/MovieSalvage.h"
#include "support/FileSizeLimit.h"
#include "support/FinishedClip.h"
#include "support/HoldsSoon.h"
#include "support/MovieProbe.h"
#include "support/TemporaryFolder.h"
#include "support/TestSamples.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace vantry {

using namespace test;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Pair;

namespace {

constexpr HostTime start(987'654'321'098'765ns);
constexpr PictureSize size{ 320, 180 };
constexpr PictureSize large{ 1280, 720 };

/// A picture that takes long to encode, and much room.
Picture noise(int number, PictureSize of = size)
{
    PictureBuffer buffer(of.width, of.height);
    buffer.fill(128, 128, 128);
    std::mt19937 random(static_cast<unsigned>(number));
    for (int y = 0; y < of.height; ++y)
        std::generate_n(buffer.plane(PlaneY).row(y), of.width, [&] { return static_cast<std::uint8_t>(16 + random() % 220); });
    return std::move(buffer).share();
}

void waitUntilReady(const ClipWriter& writer, TrackKind kind)
{
    ASSERT_TRUE(holdsSoon([&] { return writer.isReady(kind); }));
}

void show(ClipWriter& writer, HostDuration at, int luma = dark, TrackKind kind = TrackKind::screen)
{
    waitUntilReady(writer, kind);
    writer.append(PictureSample{ grey(luma), start + at }, kind);
}

constexpr int noClick = 1 << 20;

void play(ClipWriter& writer, HostDuration at, TrackKind kind, int frames, int click = noClick)
{
    waitUntilReady(writer, kind);
    writer.append(SoundSample{ soundWithClick(kind == TrackKind::audio ? 1 : 2, frames, click), start + at }, kind);
}

std::vector<double> flashes(const std::filesystem::path& file, const std::string& stream)
{
    std::vector<double> times;
    for (const auto& frame : probeFrames(file, stream))
        if (frame.luma > 130)
            times.push_back(frame.time);
    return times;
}

constexpr HostDuration frames(double count)
{
    return std::chrono::round<HostDuration>(std::chrono::duration<double>(count / framesPerSecond));
}

constexpr HostDuration samples(std::int64_t count)
{
    return std::chrono::round<HostDuration>(SampleCount(count));
}

class ClipWriterTest : public testing::Test {
protected:
    TemporaryFolder m_folder;
    const std::filesystem::path m_file = m_folder / "clip-1700000000.mov";
};

} // namespace

TEST_F(ClipWriterTest, everyTrackHasItsFormatAndLengthAndAFlashAndAClickWhereTheyHappened)
{
    // On no frame grid, and between two samples of the sound's own grid.
    const HostDuration flash = 1'234'567'891ns;
    ClipWriter writer(m_file, { .screen = size, .camera = PictureSize{ 160, 120 }, .audio = true, .system = true }, start);
    for (int i = 0; i < 60; ++i)
        for (const auto kind : { TrackKind::screen, TrackKind::camera }) {
            const auto time = frames(i) + 3ms;
            if (time < flash && flash < frames(i + 1) + 3ms)
                show(writer, flash, bright, kind);
            else
                show(writer, time, dark, kind);
        }
    for (int i = 0; i < 100; ++i)
        for (const auto kind : { TrackKind::audio, TrackKind::system })
            play(writer, samples(1024 * i), kind, 1024, i == 57 ? 891 : noClick); // sample 59259 = 1.2345625 s
    const auto outcome = finishedClip(writer, start + 2034567us);

    EXPECT_DOUBLE_EQ(outcome.duration.value(), 2.034567);
    for (const auto kind : { TrackKind::screen, TrackKind::camera, TrackKind::audio, TrackKind::system }) {
        const auto& count = outcome.counts[static_cast<std::size_t>(kind)];
        EXPECT_EQ(count.appended, kind == TrackKind::screen || kind == TrackKind::camera ? 60 : 100);
        EXPECT_EQ(count.dropped, 0);
    }
    for (const auto* stream : { "0", "1" }) {
        EXPECT_THAT(probeStream(m_file, stream),
            IsSupersetOf({ Pair("color_range", "tv"), Pair("color_space", "bt709"), Pair("color_transfer", "bt709"),
                Pair("color_primaries", "bt709"), Pair("chroma_location", "center") }));
        const auto seen = flashes(m_file, stream);
        ASSERT_EQ(seen.size(), 1u);
        EXPECT_NEAR(seen[0], 1.234567891, 1e-5); // the file's times are in 1/90000 s
        EXPECT_NEAR(probeFrames(m_file, stream).front().time, 0.003, 1e-5);
    }
    EXPECT_THAT(probeStream(m_file, "0"),
        IsSupersetOf({ Pair("codec_name", "hevc"), Pair("codec_tag_string", "hvc1"), Pair("width", "320") }));
    EXPECT_THAT(
        probeStream(m_file, "1"), IsSupersetOf({ Pair("codec_name", "h264"), Pair("width", "160"), Pair("height", "120") }));
    for (const int channels : { 1, 2 }) {
        const auto* stream = channels == 1 ? "2" : "3";
        EXPECT_THAT(probeStream(m_file, stream),
            IsSupersetOf({ Pair("codec_tag_string", "mp4a"), Pair("profile", "LC"), Pair("sample_rate", "48000"),
                Pair("channels", channels == 1 ? "1" : "2") }));
        EXPECT_EQ(firstClick(probeSound(m_file, stream), channels), 57 * 1024 + 891);
    }
    for (const auto* stream : { "0", "1", "2", "3" })
        EXPECT_NEAR(probeEnd(m_file, stream), 2.034567, 2e-5) << stream;
}

TEST_F(ClipWriterTest, samplesBeforeTheStartAreLeftOutAndLateTracksAndGapsKeepTheirTimes)
{
    ClipWriter writer(m_file, { .screen = size, .camera = size, .audio = true, .system = true }, start);
    show(writer, -1ms, bright);
    show(writer, 0ms);
    show(writer, -1ms, bright, TrackKind::camera);
    show(writer, 700ms, dark, TrackKind::camera);
    show(writer, 800ms, bright, TrackKind::camera);
    // The microphone straddles the start and clicks 100 samples after it, then misses half a second.
    play(writer, -samples(500), TrackKind::audio, 1024, 600);
    play(writer, samples(24'524), TrackKind::audio, 1024);
    // The system's sound comes late.
    play(writer, samples(40'000), TrackKind::system, 1024, 7);
    const auto outcome = finishedClip(writer, start + 1500ms);

    ASSERT_TRUE(outcome.duration);
    EXPECT_EQ(outcome.counts[0].appended, 1);
    EXPECT_EQ(outcome.counts[1].appended, 2);
    EXPECT_EQ(outcome.counts[0].dropped, 0);
    EXPECT_TRUE(flashes(m_file, "v:0").empty());
    EXPECT_NEAR(probeFrames(m_file, "v:1").at(0).time, 0.7, 1e-5);
    EXPECT_NEAR(flashes(m_file, "v:1").at(0), 0.8, 1e-5);
    EXPECT_EQ(firstClick(probeSound(m_file, "a:0"), 1), 100);
    EXPECT_EQ(firstClick(probeSound(m_file, "a:1"), 2), 40'007);
    for (const auto* stream : { "v:0", "v:1", "a:0", "a:1" })
        EXPECT_NEAR(probeEnd(m_file, stream), 1.5, 2e-5) << stream;
}

TEST_F(ClipWriterTest, aSoundThatIsGoneForLongIsBackAtItsPlace)
{
    ClipWriter writer(m_file, { .screen = size, .audio = true, .system = true }, start);
    show(writer, 0ms);
    play(writer, 0ms, TrackKind::audio, 4800, 400);
    // The rest of the clip goes on meanwhile.
    for (int i = 0; i < 30; ++i)
        play(writer, i * 1s, TrackKind::system, sampleRate, i == 29 ? 17 : noClick);
    play(writer, 29s, TrackKind::audio, 4800, 77);
    waitUntilReady(writer, TrackKind::system);
    show(writer, 29500ms, bright);
    ASSERT_TRUE(finishedClip(writer, start + 30s).duration);
    const auto microphone = probeSound(m_file, "a:0");
    EXPECT_EQ(firstClick(microphone), 400);
    EXPECT_EQ(firstClick({ microphone.begin() + 480, microphone.end() }), 29 * sampleRate + 77 - 480);
    EXPECT_EQ(firstClick(probeSound(m_file, "a:1"), 2), 29 * sampleRate + 17);
}

TEST_F(ClipWriterTest, aStillScreenOfAnotherSizeLastsToTheEndAndWhatDeliversNothingHasNoTrack)
{
    ClipWriter writer(m_file, { .screen = size, .camera = size, .audio = true }, start);
    show(writer, 0ms);
    writer.append(PictureSample{ grey(bright, { 1280, 720 }), start + 100ms }, TrackKind::screen);
    ASSERT_TRUE(finishedClip(writer, start + 12500ms).duration);

    EXPECT_EQ(probeStream(m_file, "v:0")["width"], "320");
    EXPECT_NEAR(flashes(m_file, "v:0").at(0), 0.1, 1e-5);
    EXPECT_NEAR(probeEnd(m_file, "v:0"), 12.5, 2e-5);
    for (const auto* stream : { "v:1", "a:0" })
        EXPECT_TRUE(probeStream(m_file, stream).empty()) << stream;
}

TEST_F(ClipWriterTest, aStillScreenIsSafeBeforeItChangesAgain)
{
    ClipWriter writer(m_file, { .screen = size, .audio = true }, start);
    show(writer, 0ms);
    show(writer, 100ms, bright);
    for (int i = 0; i < 180; ++i)
        play(writer, frames(i), TrackKind::audio, 1600);
    // As a crash would leave it.
    const auto copy = m_folder / "copy/clip.mov";
    const auto salvage = [&] {
        std::filesystem::remove_all(copy.parent_path());
        std::filesystem::create_directory(copy.parent_path());
        std::filesystem::copy_file(m_folder / (".clip-1700000000.mov.journal"), copy.parent_path() / ".clip.mov.journal");
        std::filesystem::copy_file(m_file, copy);
        return completeMovie(copy).value_or(0);
    };
    ASSERT_TRUE(holdsSoon([&] { return salvage() > 4 && !flashes(copy, "v:0").empty(); }));
    EXPECT_NEAR(flashes(copy, "v:0").at(0), 0.1, 1e-5);
    EXPECT_NEAR(probeEnd(copy, "v:0"), salvage(), 2e-5);
}

TEST_F(ClipWriterTest, aClipWithoutAnyPictureIsBlack)
{
    ClipWriter writer(m_file, { .screen = size, .camera = size }, start);
    show(writer, 0ms, bright, TrackKind::camera);
    ASSERT_TRUE(finishedClip(writer, start + 1s).duration);
    EXPECT_EQ(probeStream(m_file, "v:0")["codec_name"], "hevc");
    EXPECT_EQ(probeFrames(m_file, "v:0").at(0).luma, 0);
    EXPECT_NEAR(probeEnd(m_file, "v:0"), 1, 2e-5);
}

TEST_F(ClipWriterTest, whatIsAppendedBeyondTheEndIsCutOff)
{
    ClipWriter writer(m_file, { .screen = size, .camera = size, .audio = true }, start);
    for (int i = 0; i < 60; ++i) {
        show(writer, frames(i), i == 45 ? bright : dark);
        show(writer, frames(i), i == 44 ? bright : dark, TrackKind::camera);
        play(writer, frames(i), TrackKind::audio, 1600);
    }
    EXPECT_DOUBLE_EQ(finishedClip(writer, start + 1500ms).duration.value(), 1.5);
    EXPECT_TRUE(flashes(m_file, "v:0").empty());
    EXPECT_EQ(flashes(m_file, "v:1").size(), 1u);
    for (const auto* stream : { "v:0", "v:1", "a:0" })
        EXPECT_NEAR(probeEnd(m_file, stream), 1.5, 2e-5) << stream;
}

TEST_F(ClipWriterTest, keyframesAreASecondApartAtMostAsLongAsPicturesCome)
{
    ClipWriter writer(m_file, { .screen = size, .camera = size }, start);
    const auto unevenly = [](int i) { return frames(i * 2) + std::chrono::microseconds(i * 7919 % 60000); };
    for (int i = 0; i < 80; ++i) {
        if (i % 25 > 20)
            continue; // stands still for a while
        for (const auto kind : { TrackKind::screen, TrackKind::camera }) {
            waitUntilReady(writer, kind);
            writer.append(PictureSample{ noise(i), start + unevenly(i) }, kind);
        }
    }
    ASSERT_TRUE(finishedClip(writer, start + 6s).duration);
    for (const auto* stream : { "v:0", "v:1" }) {
        double keyframe = 0;
        int keyframes = 0;
        for (const auto& frame : probeFrames(m_file, stream)) {
            EXPECT_LE(frame.time - keyframe, 1) << stream;
            keyframe = frame.isKeyframe ? frame.time : keyframe;
            keyframes += frame.isKeyframe;
        }
        EXPECT_LE(keyframes, 9) << stream << ": no more than it takes";
    }
}

TEST_F(ClipWriterTest, aBusyEncoderDropsAndCounts)
{
    ClipWriter writer(m_file, { .screen = large }, start);
    const std::vector pictures{ noise(0, large), noise(1, large), noise(2, large) };
    for (std::size_t i = 0; i < 300; ++i)
        writer.append(PictureSample{ pictures[i % 3], start + frames(static_cast<double>(i)) }, TrackKind::screen);
    const auto outcome = finishedClip(writer, start + 10s);
    const auto& counts = outcome.counts[0];
    ASSERT_TRUE(outcome.duration);
    EXPECT_GT(counts.dropped, 0);
    EXPECT_EQ(counts.appended + counts.dropped, 300);
    EXPECT_EQ(probeFrames(m_file, "v:0").size(), static_cast<std::size_t>(counts.appended));
    EXPECT_NEAR(probeEnd(m_file, "v:0"), 10, 2e-5);
}

TEST_F(ClipWriterTest, aFileThatCannotGrowEndsInNoDurationAndClearWords)
{
    const test::FileSizeLimit limit(300'000);
    ClipWriter writer(m_file, { .screen = large, .audio = true }, start);
    const std::vector pictures{ noise(0, large), noise(1, large), noise(2, large) };
    int shown = 0;
    ASSERT_TRUE(holdsSoon([&] {
        while (writer.isReady(TrackKind::screen)) {
            writer.append(PictureSample{ pictures[static_cast<std::size_t>(shown % 3)], start + frames(shown) }, TrackKind::screen);
            ++shown;
        }
        return !writer.isReady(TrackKind::audio);
    })) << "it fails while it records";
    const auto outcome = finishedClip(writer, start + frames(shown));
    EXPECT_FALSE(outcome.duration);
    EXPECT_EQ(outcome.problem, "Could not write clip-1700000000.mov: File too large");
    EXPECT_EQ(outcome.counts[0].appended + outcome.counts[0].dropped, shown);
}

TEST_F(ClipWriterTest, finishingTwiceOrGoingWithoutItIsHarmless)
{
    {
        ClipWriter writer(m_file, { .screen = size, .audio = true }, start);
        show(writer, 0ms);
        EXPECT_TRUE(finishedClip(writer, start + 1s).duration);
        EXPECT_FALSE(writer.isReady(TrackKind::screen));
        writer.append(PictureSample{ grey(bright), start + 500ms }, TrackKind::screen);
        EXPECT_FALSE(finishedClip(writer, start + 2s).duration);
        EXPECT_NEAR(probeEnd(m_file, "v:0"), 1, 2e-5);
    }
    std::optional<double> duration;
    {
        ClipWriter writer(m_folder / "waits.mov", { .screen = size }, start);
        writer.finish(start + 1s, [&](const ClipOutcome& outcome) { duration = outcome.duration; });
    }
    EXPECT_EQ(duration, 1.0);
    ClipWriter abandoned(m_folder / "abandoned.mov", { .screen = size, .camera = size, .audio = true, .system = true }, start);
    show(abandoned, 0ms);
}

TEST_F(ClipWriterTest, anUnwritablePlaceIsAnErrorAtOnce)
{
    const auto open = [] { ClipWriter writer("/no/such/folder/clip-1.mov", { .screen = size }, start); };
    EXPECT_THAT(open, testing::ThrowsMessage<AppError>(HasSubstr("clip-1.mov: No such file or directory")));
    const auto openOnFullDisk = [] { ClipWriter writer("/dev/full", { .screen = size }, start); };
    EXPECT_THAT(openOnFullDisk, testing::ThrowsMessage<AppError>(HasSubstr("full: No space left on device")));
}

} // namespace vantry
