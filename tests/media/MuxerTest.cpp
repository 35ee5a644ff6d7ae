#include "media/Muxer.h"
#include "base/AppError.h"
#include "media/AudioEncoder.h"
#include "media/VideoEncoder.h"
#include "support/MovieProbe.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace vantry {

using namespace test;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Pair;

namespace {

constexpr std::uint8_t dark = 40;
constexpr std::uint8_t bright = 220;

Picture grey(std::uint8_t luma)
{
    PictureBuffer buffer(320, 180);
    buffer.fill(luma, 128, 128);
    return std::move(buffer).share();
}

/// Silence with a click of a few samples from sample `at` on.
Sound soundWithClick(int channels, int frames, int at)
{
    Sound sound{ .channels = channels, .samples = std::vector<float>(static_cast<std::size_t>(channels * frames)) };
    for (int i = at * channels; i < (at + 8) * channels; ++i)
        sound.samples[static_cast<std::size_t>(i)] = 0.9f;
    return sound;
}

PacketSink into(Muxer& muxer, int track)
{
    return [&muxer, track](Packet packet) { muxer.write(track, std::move(packet)); };
}

constexpr int flashFrame = 37;
constexpr int clickSample = 59'200; ///< The flash's first instant.

VideoEncoderSettings publishing()
{
    return { .width = 320, .height = 180, .frameRate = 30, .gop = 15, .bFrames = 2, .preset = "veryfast" };
}

void publish(const std::filesystem::path& file, int frames)
{
    VideoEncoder video(publishing());
    AudioEncoder audio({ .channels = 2, .bitRate = 384'000 });
    Muxer muxer(file, MovieFormat::Publish);
    const int videoTrack = muxer.addTrack(video);
    const int audioTrack = muxer.addTrack(audio);
    muxer.start();
    for (int i = 0; i < frames; ++i)
        video.encode(grey(i == flashFrame ? bright : dark), i * frameDuration, PictureKind::Any, into(muxer, videoTrack));
    video.finish(into(muxer, videoTrack));
    audio.encode(soundWithClick(2, frames * 1600, clickSample), into(muxer, audioTrack));
    audio.finish(into(muxer, audioTrack));
    muxer.finish();
}

} // namespace

TEST(Muxer, publishedPicturesAreWhatVideoSitesAskFor)
{
    TemporaryFolder folder;
    const auto file = folder / "a: b.mp4";
    publish(file, 100);

    EXPECT_THAT(probeStream(file, "v:0"),
        IsSupersetOf({ Pair("codec_name", "h264"), Pair("profile", "High"), Pair("pix_fmt", "yuv420p"),
            Pair("r_frame_rate", "30/1"), Pair("avg_frame_rate", "30/1"), Pair("color_range", "tv"), Pair("color_space", "bt709"),
            Pair("color_transfer", "bt709"), Pair("color_primaries", "bt709"), Pair("chroma_location", "center"),
            Pair("has_b_frames", "2"), Pair("field_order", "progressive"), Pair("start_time", "0.000000"),
            Pair("nb_frames", "100") }));
    const auto frames = probeFrames(file, "v:0");
    ASSERT_EQ(frames.size(), 100u);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_NEAR(frames[i].time, static_cast<double>(i) / 30, 1e-6);
        EXPECT_EQ(frames[i].isKeyframe, i % 15 == 0) << i;
    }
    EXPECT_NEAR(probeEnd(file, "v:0"), 100 / 30.0, 1e-5);

    const auto boxes = movieBoxes(file);
    EXPECT_LT(std::ranges::find(boxes, "moov"), std::ranges::find(boxes, "mdat"));
    EXPECT_EQ(std::ranges::count(boxes, "moov/trak"), 2);
    EXPECT_EQ(std::ranges::count(boxes, "moov/trak/edts"), 0);
}

TEST(Muxer, publishedSoundAndPictureMeetToTheSample)
{
    TemporaryFolder folder;
    const auto file = folder / "a.mp4";
    publish(file, 100);

    EXPECT_THAT(probeStream(file, "a:0"),
        IsSupersetOf({ Pair("codec_name", "aac"), Pair("profile", "LC"), Pair("sample_rate", "48000"), Pair("channels", "2"),
            Pair("start_time", "0.000000") }));
    EXPECT_EQ(firstClick(probeSound(file, "a:0"), 2), clickSample);
    const auto frames = probeFrames(file, "v:0");
    const auto flash = std::ranges::find_if(frames, [](const auto& frame) { return frame.luma > 130; });
    ASSERT_NE(flash, frames.end());
    EXPECT_NEAR(flash->time, clickSample / 48000.0, 1e-6);
    EXPECT_EQ(std::ranges::count_if(frames, [](const auto& frame) { return frame.luma > 130; }), 1);
}

TEST(Muxer, aClipKeepsTrueTimesLateTracksAndTheLastPictureToTheEnd)
{
    TemporaryFolder folder;
    const auto file = folder / "a.mov";
    // In ticks of 1/90000 s: not on any frame grid, the second track late, the end long after the last picture.
    const std::vector<std::int64_t> ticks{ 0, 2'999, 7'001, 40'000, 40'001, 133'337 };
    const auto at = [](std::int64_t tick) { return MediaTime(tick * (MediaTime::period::den / 90'000)); };
    {
        VideoEncoder screen(
            { .codec = VideoCodec::Hevc, .width = 320, .height = 180, .bitRate = 8'000'000, .preset = "ultrafast" });
        VideoEncoder camera({ .width = 320, .height = 180, .bitRate = 1'000'000, .preset = "ultrafast" });
        AudioEncoder microphone({ .channels = 1, .bitRate = 160'000 });
        Muxer muxer(file, MovieFormat::Clip);
        const int tracks[] = { muxer.addTrack(screen), muxer.addTrack(camera), muxer.addTrack(microphone) };
        muxer.start();
        for (auto tick : ticks)
            screen.encode(grey(tick == 40'000 ? bright : dark), at(tick), tick == 40'000 ? PictureKind::Keyframe : PictureKind::Any,
                into(muxer, tracks[0]));
        screen.finish(into(muxer, tracks[0]));
        camera.encode(grey(dark), at(50'003), PictureKind::Any, into(muxer, tracks[1]));
        camera.finish(into(muxer, tracks[1]));
        microphone.encode(soundWithClick(1, 120'000, 21'333), into(muxer, tracks[2]));
        microphone.finish(into(muxer, tracks[2]));
        muxer.finish(at(225'000));
    }
    EXPECT_THAT(probeStream(file, "v:0"),
        IsSupersetOf(
            { Pair("codec_name", "hevc"), Pair("codec_tag_string", "hvc1"), Pair("color_range", "tv"), Pair("color_space", "bt709"),
                Pair("color_transfer", "bt709"), Pair("color_primaries", "bt709"), Pair("chroma_location", "center") }));
    const auto frames = probeFrames(file, "v:0");
    ASSERT_EQ(frames.size(), ticks.size());
    for (std::size_t i = 0; i < ticks.size(); ++i) {
        EXPECT_NEAR(frames[i].time, static_cast<double>(ticks[i]) / 90'000, 2e-6);
        EXPECT_EQ(frames[i].luma > 130, ticks[i] == 40'000) << i;
    }
    EXPECT_TRUE(frames[3].isKeyframe);
    EXPECT_NEAR(probeFrames(file, "v:1").at(0).time, 50'003 / 90'000.0, 2e-6);
    EXPECT_EQ(firstClick(probeSound(file, "a:0")), 21'333);
    for (const auto* stream : { "v:0", "v:1", "a:0" })
        EXPECT_NEAR(probeEnd(file, stream), 2.5, 2e-5) << stream;
}

TEST(Muxer, aFullDiskIsSaidInClearWords)
{
    const auto publishOnFullDisk = [] { publish("/dev/full", 100); };
    EXPECT_THAT(
        publishOnFullDisk, testing::ThrowsMessage<AppError>(AllOf(HasSubstr("Could not write full"), HasSubstr("No space left"))));
    const auto openInNoFolder = [] { Muxer muxer("/no/such/folder/clip.mov", MovieFormat::Clip); };
    EXPECT_THAT(openInNoFolder,
        testing::ThrowsMessage<AppError>(AllOf(HasSubstr("Could not write clip.mov"), HasSubstr("No such file or directory"))));
}

} // namespace vantry
