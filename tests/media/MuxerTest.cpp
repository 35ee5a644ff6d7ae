#include "media/Muxer.h"
#include "media/AudioEncoder.h"
#include "media/VideoEncoder.h"
#include "support/MovieProbe.h"
#include "support/TemporaryFolder.h"
#include "support/TestSamples.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vantry {

using namespace test;

namespace {

PacketSink into(Muxer& muxer, int track)
{
    return [&muxer, track](Packet packet) { muxer.write(track, std::move(packet)); };
}

} // namespace

TEST(Muxer, publishedSoundAndPictureMeetToTheSample)
{
    constexpr int flash = 37, click = flash * 1600;
    const TemporaryFolder folder;
    const auto file = folder / "a: b.mp4";
    VideoEncoder video({ .width = 320, .height = 180, .frameRate = 30, .gop = 15, .bFrames = 2, .preset = "veryfast" });
    AudioEncoder audio({ .channels = 2, .bitRate = 384'000 });
    Muxer muxer(file, MovieFormat::Publish);
    const auto pictures = into(muxer, muxer.addTrack(video)), sounds = into(muxer, muxer.addTrack(audio));
    muxer.start();
    for (int i = 0; i < 100; ++i)
        video.encode(grey(i == flash ? bright : dark), i * frameDuration, PictureKind::Any, pictures);
    video.finish(pictures);
    audio.encode(soundWithClick(2, 100 * 1600, click), sounds);
    audio.finish(sounds);
    muxer.finish();

    EXPECT_EQ(firstClick(probeSound(file, "a:0"), 2), click);
    const auto frames = probeFrames(file, "v:0");
    ASSERT_EQ(frames.size(), 100u);
    for (int i = 0; i < 100; ++i) {
        const auto& frame = frames[static_cast<std::size_t>(i)];
        EXPECT_NEAR(frame.time, i / 30.0, 1e-6);
        EXPECT_EQ(frame.luma > 130, i == flash) << i;
    }
    EXPECT_NEAR(probeEnd(file, "v:0"), 100 / 30.0, 1e-5);
    EXPECT_EQ(probeStream(file, "v:0")["chroma_location"], "center");
    EXPECT_EQ(std::ranges::count(movieBoxes(file), "moov/trak/edts"), 0);
}

/// More packets than are remembered of a clip while it is written.
TEST(Muxer, aLongClipHasEveryPacket)
{
    constexpr int count = 10'000;
    const TemporaryFolder folder;
    const auto file = folder / "long.mov";
    VideoEncoder video({ .width = 64, .height = 36, .preset = "ultrafast" });
    Muxer muxer(file, MovieFormat::Clip);
    const auto pictures = into(muxer, muxer.addTrack(video));
    muxer.start();
    for (int i = 0; i < count; ++i)
        video.encode(grey(i % 4000 == 0 ? bright : dark, { 64, 36 }), i * frameDuration, PictureKind::Any, pictures);
    video.finish(pictures);
    muxer.finish(count * frameDuration);

    const auto frames = probeFrames(file, "v:0");
    ASSERT_EQ(frames.size(), std::size_t{ count });
    for (int i = 0; i < count; ++i) {
        const auto& frame = frames[static_cast<std::size_t>(i)];
        EXPECT_NEAR(frame.time, i / 30.0, 1e-6);
        EXPECT_EQ(frame.luma > 130, i % 4000 == 0) << i;
    }
    EXPECT_NEAR(probeEnd(file, "v:0"), count / 30.0, 1e-5);
}

} // namespace vantry
