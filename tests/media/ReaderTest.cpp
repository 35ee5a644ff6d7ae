#include "media/AudioReader.h"
#include "media/VideoReader.h"

#include "base/AppError.h"
#include "support/Command.h"
#include "support/MovieProbe.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <numeric>
#include <sys/stat.h>

namespace vantry {

namespace {

using namespace std::chrono_literals;
using namespace test;
using testing::AllOf;
using testing::AnyOf;
using testing::Each;
using testing::Ge;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Lt;
using testing::Not;
using testing::ThrowsMessage;

/// Movies of foreign making, by the command line of the media libraries.
class ReaderTest : public testing::Test {
protected:
    std::filesystem::path make(const std::string& name, const std::string& arguments)
    {
        const auto file = m_folder / name;
        runCommand("ffmpeg -v error -y " + arguments + " '" + file.string() + "'");
        return file;
    }

    /// 30 pictures a second whose luma counts: 20, 21, 22 … Three B-frames in a row, a keyframe every 15.
    std::filesystem::path makeCountingMovie(const std::string& name, const std::string& more = "")
    {
        return make(name,
            "-f lavfi -i \"nullsrc=s=64x64:r=30:d=3,format=yuv420p,geq=lum='20+N':cb=128:cr=128\" " + more
                + " -c:v libx264 -qp 0 -bf 3 -g 15 -x264-params b-adapt=0:scenecut=0");
    }

    TemporaryFolder m_folder;
};

int number(const TimedPicture& picture)
{
    return picture.picture.plane(PlaneY).row(32)[32] - 20;
}

struct Heard {
    MediaTime loudest{}; ///< In the movie's time.
    MediaTime end{};
};

Heard heardOf(AudioReader& reader)
{
    float greatest = 0;
    Heard heard;
    while (const auto sound = reader.next()) {
        for (std::size_t i = 0; i < sound->sound.frames(); ++i)
            if (const float value = std::abs(sound->sound.samples[i * sound->sound.channels]); value > greatest) {
                greatest = value;
                heard.loudest = sound->time + SampleCount(static_cast<std::int64_t>(i));
            }
        heard.end = sound->time + sound->sound.length();
    }
    return heard;
}

std::function<void()> readingAll(const std::filesystem::path& movie)
{
    return [movie] {
        readTracks(movie);
        VideoReader reader(movie, 0);
        while (reader.next()) { }
    };
}

/// Keeps what a reader tells.
DamageSink into(std::vector<TimeRange>& damage)
{
    return [&damage](TimeRange range) { damage.push_back(range); };
}

std::vector<int> numbersOf(VideoReader& reader)
{
    std::vector<int> numbers;
    while (const auto picture = reader.next())
        numbers.push_back(number(*picture));
    return numbers;
}

std::vector<int> numbersFrom(int first, int last)
{
    std::vector<int> numbers(static_cast<std::size_t>(last - first + 1));
    std::iota(numbers.begin(), numbers.end(), first);
    return numbers;
}

} // namespace

TEST_F(ReaderTest, picturesComeInTheOrderTheyAreShownWithExactTimes)
{
    VideoReader reader(makeCountingMovie("a.mov"), 0);
    int expected = 0;
    while (const auto picture = reader.next()) {
        EXPECT_EQ(number(*picture), expected);
        EXPECT_EQ(picture->time, expected * frameDuration);
        ++expected;
    }
    EXPECT_EQ(expected, 90);
}

TEST_F(ReaderTest, seekGivesTheNewestPictureAtOrBeforeTheTime)
{
    VideoReader reader(makeCountingMovie("a.mov"), 0);
    for (const int wanted : { 44, 0, 89, 15, 14, 13, 30, 31 }) {
        reader.seek(wanted * frameDuration + MediaTime(1));
        EXPECT_EQ(number(reader.next().value()), wanted);
        reader.seek((wanted + 1) * frameDuration - MediaTime(1));
        EXPECT_EQ(number(reader.next().value()), wanted);
        if (wanted < 89) {
            EXPECT_EQ(number(reader.next().value()), wanted + 1);
        }
    }
    reader.seek(-5s);
    EXPECT_EQ(number(reader.next().value()), 0);
    reader.seek(1h);
    EXPECT_EQ(number(reader.next().value()), 89);
    EXPECT_FALSE(reader.next());
}

TEST_F(ReaderTest, aLateTrackKeepsItsPlaceOnTheMoviesTimeline)
{
    const auto movie = makeCountingMovie(
        "late.mov", "-itsoffset 0.5 -f lavfi -i \"testsrc=s=64x64:r=30:d=1\" -map 0 -map 1 -fps_mode passthrough");
    const auto tracks = readTracks(movie);
    ASSERT_EQ(tracks.size(), 2u);
    EXPECT_EQ(tracks[0].start, 0s);
    EXPECT_EQ(tracks[0].duration, 3s);
    EXPECT_EQ(tracks[1].start, 500ms);
    EXPECT_EQ(tracks[1].duration, 1s);
    VideoReader reader(movie, 1);
    EXPECT_EQ(reader.next().value().time, 500ms);
    reader.seek(0s);
    EXPECT_EQ(reader.next().value().time, 500ms);
    reader.seek(800ms);
    EXPECT_EQ(reader.next().value().time, 800ms);
}

TEST_F(ReaderTest, soundIsInItsPlaceToTheSampleWithoutTheEncodersPriming)
{
    for (const std::string flags : { "", "-movflags frag_keyframe+empty_moov+delay_moov" }) {
        const auto movie = make("click.mov", "-f lavfi -i aevalsrc=\"eq(n\\,12345):s=48000:d=1\" -c:a aac -b:a 160k " + flags);
        AudioReader reader(movie, 0, 1);
        const auto first = reader.next().value();
        EXPECT_EQ(first.time, 0s);
        EXPECT_EQ(heardOf(reader).loudest, SampleCount(12345)) << flags;
        reader.seek(SampleCount(12345));
        const auto found = reader.next().value();
        EXPECT_LE(found.time, SampleCount(12345));
        EXPECT_GT(found.time + found.sound.length(), SampleCount(12345));
        reader.seek(200ms);
        EXPECT_EQ(heardOf(reader).loudest, SampleCount(12345)) << flags;
    }
}

TEST_F(ReaderTest, foreignSoundIsConvertedWithoutChangingItsLevel)
{
    const auto mono = make("mono.mov", "-f lavfi -i aevalsrc=\"0.5:s=48000:d=1\" -c:a pcm_s16le");
    AudioReader reader(mono, 0, 2);
    const auto sound = reader.next().value().sound;
    EXPECT_EQ(sound.channels, 2);
    EXPECT_NEAR(sound.samples[100], 0.5, 1e-3);
    EXPECT_NEAR(sound.samples[101], 0.5, 1e-3);

    const auto slow = make("44100.mov", "-f lavfi -i aevalsrc=\"0.8*eq(n\\,22050):s=44100:d=1\" -c:a pcm_s16le");
    AudioReader resampling(slow, 0, 1);
    const auto heard = heardOf(resampling);
    EXPECT_EQ(heard.loudest, SampleCount(24000));
    EXPECT_NEAR(std::chrono::duration<double>(heard.end).count(), 1, 2.0 / 48000);
}

TEST_F(ReaderTest, everyPixelFormatBecomesLimitedRangeBt709)
{
    // Pure red: 63, 102, 240 in 8 bits.
    const std::string red = "-f lavfi -i color=red:s=62x50:r=30:d=0.2,format=gbrp ";
    const std::string bt601 =
        red + "-vf scale=out_color_matrix=bt601:out_range=tv,format=yuv420p -colorspace smpte170m -c:v libx264 -qp 0";
    const std::string full =
        red + "-vf scale=out_color_matrix=bt709:out_range=pc,format=yuvj444p -colorspace bt709 -color_range pc -c:v libx264 -qp 0";
    const std::string tenBit = red
        + "-vf scale=out_color_matrix=bt709:out_range=tv,format=yuv420p10le -colorspace bt709 -c:v libx265 -x265-params "
          "log-level=error";
    for (const auto& arguments : { bt601, full, tenBit, red + "-c:v png", red + "-vf format=bgra -c:v qtrle" }) {
        VideoReader reader(make("red.mov", arguments), 0);
        const auto picture = reader.next().value().picture;
        EXPECT_EQ(picture.width(), 62);
        EXPECT_EQ(picture.height(), 50);
        EXPECT_NEAR(picture.plane(PlaneY).row(25)[31], 63, 2) << arguments;
        EXPECT_NEAR(picture.plane(PlaneCb).row(12)[15], 102, 2) << arguments;
        EXPECT_NEAR(picture.plane(PlaneCr).row(12)[15], 240, 2) << arguments;
    }
}

TEST_F(ReaderTest, damagedPicturesAreLeftOutUpToTheNextKeyframeAndTold)
{
    const auto movie = makeCountingMovie("a.mov");
    damagePackets(movie, "v:0", 1.0, 1.01); // Number 30, a keyframe.
    damagePackets(movie, "v:0", 2.3, 2.32); // Number 69: 68 and what follows needs it, 66 and 67 were decoded before.
    std::vector<TimeRange> damage;
    VideoReader reader(movie, 0, into(damage));
    const auto read = numbersOf(reader);
    EXPECT_THAT(read,
        AllOf(IsSupersetOf(numbersFrom(0, 29)), IsSupersetOf(numbersFrom(45, 65)), IsSupersetOf(numbersFrom(75, 89)),
            Each(Not(AnyOf(AllOf(Ge(30), Lt(45)), AllOf(Ge(69), Lt(75)))))));
    EXPECT_TRUE(std::ranges::is_sorted(read));
    ASSERT_EQ(damage.size(), 2u);
    EXPECT_EQ(damage[0].from, 1s);
    EXPECT_EQ(damage[0].to, 1500ms);
    EXPECT_GE(damage[1].from, 65 * frameDuration);
    EXPECT_LE(damage[1].from, 69 * frameDuration);
    EXPECT_EQ(damage[1].to, 2500ms);

    for (const auto& [wanted, found] : { std::pair(44, 29), { 30, 29 }, { 46, 46 }, { 2, 2 } }) {
        reader.seek(wanted * frameDuration);
        EXPECT_EQ(number(reader.next().value()), found) << wanted;
    }
}

TEST_F(ReaderTest, damagedSoundIsLeftOutAndTheRestStaysInItsPlace)
{
    const auto movie = make("click.mov", "-f lavfi -i aevalsrc=\"0.05*sin(n/9)+eq(n\\,40000):s=48000:d=1\" -c:a aac -b:a 160k");
    damagePackets(movie, "a:0", 0.3, 0.4);
    std::vector<TimeRange> damage;
    AudioReader reader(movie, 0, 1, into(damage));
    EXPECT_EQ(heardOf(reader).loudest, SampleCount(40000));
    ASSERT_THAT(damage, Not(IsEmpty()));
    EXPECT_GE(damage.front().from, 300ms);
    EXPECT_LE(damage.front().from, 325ms);
    EXPECT_GE(damage.back().to, 395ms);
    EXPECT_LE(damage.back().to, 425ms);
}

TEST_F(ReaderTest, damageDoesNotMakeSoundAnotherKindOfSound)
{
    const auto movie = make("mono.mov", "-f lavfi -i sine=d=1 -ar 48000 -ac 1 -c:a aac");
    damagePackets(movie, "a:0", -1, 0.2, std::string("\x21\x00\x49\x90\x02\x19\x00\x23\x80", 9)); // Silence in stereo.
    EXPECT_EQ(readTracks(movie).at(0).channels, 1);
    std::vector<TimeRange> damage;
    AudioReader reader(movie, 0, 1, into(damage));
    EXPECT_GE(reader.next().value().time, 190ms);
    EXPECT_EQ(damage.front().from, 0s);
}

TEST_F(ReaderTest, aMovieWhoseEndIsMissingIsReadUpToThere)
{
    const auto movie = makeCountingMovie("first.mov", "-movflags faststart");
    std::filesystem::resize_file(movie, std::filesystem::file_size(movie) * 2 / 3);
    std::vector<TimeRange> damage;
    VideoReader reader(movie, 0, into(damage));
    const auto read = numbersOf(reader);
    ASSERT_FALSE(read.empty());
    EXPECT_EQ(read, numbersFrom(0, read.back()));
    EXPECT_LT(read.back(), 89);
    ASSERT_EQ(damage.size(), 1u);
    EXPECT_NEAR(static_cast<double>(damage[0].from / frameDuration), read.back() + 1, 3);
    EXPECT_EQ(damage[0].to, 3s);
    reader.seek(3s);
    EXPECT_EQ(number(reader.next().value()), read.back());
    reader.seek(0s);
    EXPECT_EQ(number(reader.next().value()), 0);
}

TEST_F(ReaderTest, aHealthyMovieHasNoDamage)
{
    std::vector<TimeRange> damage;
    const auto movie = makeCountingMovie("a.mov", "-itsoffset 0.2 -f lavfi -i sine=d=3 -c:a aac -shortest");
    for (const auto& file :
        { movie, makeCountingMovie("b.mp4", "-movflags frag_keyframe+empty_moov"), makeCountingMovie("c.mkv") }) {
        VideoReader reader(file, 0, into(damage));
        for (const auto time : { 0s, 2s, 1s, 9s }) {
            reader.seek(time);
            while (reader.next()) { }
        }
    }
    AudioReader reader(movie, 1, 2, into(damage));
    heardOf(reader);
    EXPECT_THAT(damage, IsEmpty());
}

TEST_F(ReaderTest, filesThatCannotBeReadSayWhichAndWhy)
{
    ASSERT_EQ(mkfifo((m_folder / "pipe.mov").c_str(), 0600), 0);
    std::ofstream(m_folder / "noise.mov") << std::string(10'000, 'x');
    // The index is lost with the end, all of it or some.
    const auto without = makeCountingMovie("without.mov"), half = makeCountingMovie("half.mov");
    std::filesystem::resize_file(without, std::filesystem::file_size(without) / 10);
    std::filesystem::resize_file(half, std::filesystem::file_size(half) - 100);
    for (const auto& [name, why] : { std::pair("missing.mov", "No such file or directory"), { "pipe.mov", "It is not a movie" },
             { "noise.mov", "Invalid data" }, { "without.mov", "" }, { "half.mov", "" } })
        EXPECT_THAT(
            readingAll(m_folder / name), ThrowsMessage<AppError>(HasSubstr("Cannot read " + std::string(name) + ": " + why)));

    const auto good = makeCountingMovie("good.mov");
    EXPECT_THAT([&] { AudioReader(good, 0, 1); }, ThrowsMessage<AppError>(HasSubstr("good.mov: It has no such audio track")));
    EXPECT_THAT([&] { VideoReader(good, 1); }, ThrowsMessage<AppError>(HasSubstr("good.mov: It has no such video track")));
}

} // namespace vantry
