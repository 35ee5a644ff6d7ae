#include "capture/Recorder.h"

#include "support/Collected.h"
#include "support/DeviceProgram.h"
#include "support/Ear.h"
#include "support/MediaServer.h"
#include "support/MovieProbe.h"
#include "support/TonePlayer.h"
#include "support/Troubles.h"
#include "support/XServer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <malloc.h>

namespace vantry {

namespace {

using test::pumpUntil;
using test::TonePlayer;
using testing::IsEmpty;

class RecorderTest : public test::EventLoopTest {
protected:
    RecorderTest() { recorder.setOnTrouble(troubles.handler()); }

    void start(const std::optional<std::string>& camera, const std::optional<std::string>& microphone)
    {
        recorder.session().configure(camera, microphone);
        recorder.session().startCamera();
        recorder.startScreen(displays().at(0)).waitForFinished();
        recorder.session().settled().waitForFinished();
    }
    void stop()
    {
        recorder.stopScreen().waitForFinished();
        recorder.session().stopCamera();
    }

    bool awaitPicture(bool wanted = true)
    {
        return pumpUntil([&] { return recorder.session().preview().latest().has_value() == wanted; });
    }

    bool goOn(double length)
    {
        return pumpUntil([&, end = recorder.elapsed() + length] { return recorder.elapsed() >= end; });
    }

    /// The length of the clip, which is in `file`.
    double record(double length)
    {
        recorder.beginClip(file);
        EXPECT_TRUE(goOn(length));
        return recorder.endClip().result().value_or(0);
    }

    test::XServer server{ 320, 240 };
    test::TemporaryFolder folder;
    const std::filesystem::path file = folder / "clip.mov";
    test::Troubles troubles;
    Recorder recorder;
};

std::size_t entries(const char* folder)
{
    using Iterator = std::filesystem::directory_iterator;
    return static_cast<std::size_t>(std::distance(Iterator(folder), Iterator()));
}

/// What this process holds.
struct Holdings {
    std::size_t threads = entries("/proc/self/task");
    std::size_t files = entries("/proc/self/fd");
    std::size_t bytes = mallinfo2().uordblks + mallinfo2().hblkhd;
};

} // namespace

TEST_F(RecorderTest, aCameraThatGoesAwayLeavesItsLastPictureAndTheRestGoesOn)
{
    const auto name = test::uniqueName("camera");
    std::optional<test::DeviceProgram> program(
        std::in_place, "testcamera", test::DeviceProgram::Arguments{ name, "Camera", "NV12", "320x240" });
    start(name, "test-microphone");
    ASSERT_TRUE(awaitPicture());
    EXPECT_TRUE(recorder.hasCamera());
    recorder.beginClip(file);
    ASSERT_TRUE(goOn(1));
    program.reset();
    ASSERT_TRUE(awaitPicture(false));
    const double gone = recorder.elapsed();
    ASSERT_TRUE(goOn(1));
    const auto duration = recorder.endClip().result();
    ASSERT_TRUE(duration);
    EXPECT_EQ(test::probeStream(file, "v:1")["height"], "240");
    const auto frames = test::probeFrames(file, "v:1");
    EXPECT_LT(frames.front().time, 0.001) << "a clip begins with the newest picture";
    EXPECT_GT(frames.size(), 3u); // A slow encoder drops pictures.
    EXPECT_LT(frames.back().time, gone);
    EXPECT_NEAR(test::probeEnd(file, "v:1"), *duration, 0.05);
    const auto sound = test::probeSound(file, "a:0");
    EXPECT_NEAR(static_cast<double>(sound.size()) / 48000, *duration, 0.05);
    // In a good part of the last second: a busy machine leaves out cycles.
    const auto isTone = [](float sample) { return std::abs(sample) > 0.1F && std::abs(sample) < 0.35F; };
    EXPECT_GT(std::count_if(sound.end() - 48000, sound.end(), isTone), 48000 / 8);
}

TEST_F(RecorderTest, oneRecordingAfterTheOtherHoldsNoMore)
{
    recorder.setCaptureSystemAudio(true);
    const auto recordClip = [&] {
        start("test-camera", "test-microphone");
        ASSERT_TRUE(awaitPicture());
        ASSERT_GT(record(0.3), 0);
        stop();
        ASSERT_TRUE(awaitPicture(false));
    };
    for (int i = 0; i < 3; ++i)
        recordClip();
    const Holdings before;
    for (int i = 0; i < 7; ++i)
        recordClip();
    EXPECT_TRUE(pumpUntil([&] { return Holdings().threads <= before.threads; })) << Holdings().threads << " > " << before.threads;
    EXPECT_TRUE(pumpUntil([&] { return Holdings().files <= before.files; })) << Holdings().files << " > " << before.files;
    constexpr std::size_t noise = 1 << 20;
    EXPECT_LT(Holdings().bytes, before.bytes + noise);
}

TEST_F(RecorderTest, systemSoundIsATrackOfItsOwnWithoutHoles)
{
    const TonePlayer player(TonePlayer::Server::Pulse, { 700, 1100 });
    recorder.setCaptureSystemAudio(true);
    start({}, {});
    recorder.setCaptureSystemAudio(false); // Counts from the next start on.
    record(1);
    record(2);
    EXPECT_EQ(test::probeStream(file, "a:0")["channels"], "2");
    EXPECT_THAT(test::probeStream(file, "a:1"), IsEmpty());
    const auto samples = test::probeSound(file, "a:0");
    const auto second = std::span(samples).subspan(48000, 96000);
    EXPECT_NEAR(test::loudness(second, 2, 0, 700), TonePlayer::amplitude, 0.03);
    EXPECT_NEAR(test::loudness(second, 2, 1, 1100), TonePlayer::amplitude, 0.03);
    EXPECT_LT(test::loudness(second, 2, 0, 1100), 0.01);
    EXPECT_EQ(troubles.count(), 0);

    stop();
    start({}, {});
    record(0.1);
    EXPECT_THAT(test::probeStream(file, "a:0"), IsEmpty());
}

TEST_F(RecorderTest, aMicrophoneThatWasPulledOutHasATrackOnlyIfItComesBack)
{
    const auto name = test::uniqueName("microphone");
    std::optional<test::DeviceProgram> microphone(std::in_place, "testmicrophone", test::DeviceProgram::Arguments{ name, "Desk" });
    start({}, name);
    ASSERT_TRUE(pumpUntil([&] { return recorder.session().micPower() > -16; }));
    microphone.reset();
    ASSERT_TRUE(pumpUntil([&] { return !troubles.of(CaptureSource::Microphone).empty(); }));
    EXPECT_THAT(troubles.of(CaptureSource::Microphone), testing::StartsWith("Desk is gone."));
    // What was heard last must not reach into the clip.
    ASSERT_TRUE(pumpUntil([later = HostClock::now() + std::chrono::milliseconds(200)] { return HostClock::now() > later; }));
    record(1);
    EXPECT_THAT(test::probeStream(file, "a:0"), IsEmpty());

    recorder.beginClip(file);
    ASSERT_TRUE(goOn(0.5));
    microphone.emplace("testmicrophone", test::DeviceProgram::Arguments{ name, "Desk" });
    ASSERT_TRUE(pumpUntil([&] { return recorder.session().micPower() > -16; }));
    EXPECT_EQ(troubles.of(CaptureSource::Microphone), "");
    const double length = recorder.endClip().result().value_or(0);
    EXPECT_NEAR(test::probeEnd(file, "a:0"), length, 0.001);
    const auto samples = test::probeSound(file, "a:0");
    EXPECT_LT(test::loudness(std::span(samples).first(sampleRate / 2), 1, 0, 440), 0.01);
    EXPECT_GT(test::loudness(std::span(samples).last(sampleRate / 20), 1, 0, 440), 0.1);
}

TEST_F(RecorderTest, aClipEndsWhereTheUserAskedForIt)
{
    start({}, "test-microphone");
    recorder.beginClip(file);
    ASSERT_TRUE(goOn(0.6));
    const HostTime asked = HostClock::now();
    const double length = recorder.elapsed();
    ASSERT_TRUE(goOn(0.4));
    EXPECT_NEAR(recorder.endClip(asked).result().value_or(0), length, 0.02);
    EXPECT_NEAR(test::probeEnd(file, "v:0"), length, 0.03);
    EXPECT_NEAR(test::probeEnd(file, "a:0"), length, 0.03);
}

TEST_F(RecorderTest, whereThereIsNoMediaServerTheScreenIsRecordedAlone)
{
    test::MediaServer media;
    media.kill();
    test::Collected<ClipOutcome> outcomes;
    recorder.setOnClip([&](const ClipOutcome& told) { outcomes.add(told); });
    recorder.setCaptureSystemAudio(true);
    start("no-such-camera", "no-such-microphone");
    const double length = record(0.5);
    EXPECT_GE(length, 0.5);
    ASSERT_EQ(outcomes.count(), 1u);
    EXPECT_EQ(outcomes.all()[0].duration, length);
    EXPECT_GE(outcomes.all()[0].counts[static_cast<std::size_t>(TrackKind::screen)].appended, 1);
    EXPECT_THAT(test::probeStream(file, "v:0"), testing::Not(IsEmpty()));
    EXPECT_THAT(test::probeStream(file, "v:1"), IsEmpty());
    EXPECT_THAT(test::probeStream(file, "a:0"), IsEmpty());
    EXPECT_THAT(troubles.of(CaptureSource::SystemSound),
        testing::StartsWith("Other applications' sound is not recorded: There is no PipeWire server to connect to: "));
    stop();
    EXPECT_EQ(troubles.of(CaptureSource::SystemSound), "") << "it is not wanted any more";
}

} // namespace vantry
