#include "capture/Recorder.h"

#include "support/DeviceProgram.h"
#include "support/MovieProbe.h"
#include "support/PumpUntil.h"
#include "support/TemporaryFolder.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iterator>
#include <malloc.h>

namespace vantry {

namespace {

using test::DeviceProgram;
using test::pumpUntil;
using test::uniqueName;

class RecorderTest : public test::EventLoopTest {
protected:
    void record(double length)
    {
        recorder.beginClip(file);
        ASSERT_TRUE(pumpUntil([&] { return recorder.elapsed() >= length; }));
    }
    std::optional<double> finish() { return recorder.endClip().result(); }

    void startScreen() { recorder.startScreen(displays().at(0)).waitForFinished(); }

    void awaitDevice(const std::string& camera)
    {
        auto& session = recorder.session();
        session.setOnDevices({}); // Connects.
        ASSERT_TRUE(pumpUntil([&] { return session.devices().hasCamera(camera); }));
    }

    bool awaitCameraPicture()
    {
        return pumpUntil([&] { return recorder.session().preview().latest().has_value(); });
    }

    test::XServer server{ 320, 240 };
    test::TemporaryFolder folder;
    const std::filesystem::path file = folder / "clip.mov";
    Recorder recorder;
};

/// The test microphone's tone is heard in a good part of the stretch: a busy machine leaves out cycles.
bool hasTone(const std::vector<float>& samples, std::size_t from, std::size_t to)
{
    const auto loud =
        std::count_if(samples.begin() + static_cast<std::ptrdiff_t>(from), samples.begin() + static_cast<std::ptrdiff_t>(to),
            [](float sample) { return std::abs(sample) > 0.1F && std::abs(sample) < 0.35F; });
    return static_cast<std::size_t>(loud) > (to - from) / 8;
}

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

TEST_F(RecorderTest, aClipHasTheCameraAndTheMicrophone)
{
    const test::OwnCamera own;
    startScreen();
    awaitDevice(own.name());
    recorder.session().configure(own.name(), "test-microphone");
    recorder.session().startCamera();
    ASSERT_TRUE(awaitCameraPicture());
    EXPECT_TRUE(recorder.hasCamera());
    record(2.5);
    const auto duration = finish();
    ASSERT_TRUE(duration);

    auto camera = test::probeStream(file, "v:1");
    EXPECT_EQ(camera["width"], "1920");
    EXPECT_EQ(camera["height"], "1080");
    EXPECT_NEAR(test::probeEnd(file, "v:1"), *duration, 0.05);
    const auto frames = test::probeFrames(file, "v:1");
    EXPECT_LT(frames.at(0).time, 0.3);
    EXPECT_GT(frames.size(), 3u); // A slow encoder drops pictures.
    const auto sound = test::probeSound(file, "a:0");
    EXPECT_NEAR(static_cast<double>(sound.size()) / 48000, *duration, 0.05);
    EXPECT_TRUE(hasTone(sound, 48000, 96000));
}

TEST_F(RecorderTest, aCameraThatGoesAwayLeavesItsLastPictureAndTheRestGoesOn)
{
    const auto name = uniqueName("camera");
    std::optional<DeviceProgram> program(
        std::in_place, "testcamera", DeviceProgram::Arguments{ name, "Camera", "NV12", "320x240" });
    startScreen();
    awaitDevice(name);
    auto& session = recorder.session();
    session.configure(name, "test-microphone");
    session.startCamera();
    ASSERT_TRUE(awaitCameraPicture());
    record(1);
    program.reset();
    ASSERT_TRUE(pumpUntil([&] { return !session.preview().latest(); }));
    const double gone = recorder.elapsed();
    ASSERT_TRUE(pumpUntil([&] { return recorder.elapsed() >= gone + 1; }));
    const auto duration = finish();
    ASSERT_TRUE(duration);
    EXPECT_LT(test::probeFrames(file, "v:1").back().time, gone);
    EXPECT_NEAR(test::probeEnd(file, "v:1"), *duration, 0.05);
    const auto sound = test::probeSound(file, "a:0");
    EXPECT_TRUE(hasTone(sound, sound.size() - 48000, sound.size()));
}

TEST_F(RecorderTest, oneRecordingAfterTheOtherHoldsNoMore)
{
    awaitDevice("test-camera");
    recorder.setCaptureSystemAudio(true);
    recorder.session().configure("test-camera", "test-microphone");
    const auto recordClip = [&] {
        recorder.session().startCamera();
        startScreen();
        ASSERT_TRUE(awaitCameraPicture());
        record(0.3);
        ASSERT_TRUE(finish());
        recorder.stopScreen().waitForFinished();
        recorder.session().stopCamera();
        ASSERT_TRUE(pumpUntil([&] { return !recorder.session().preview().latest(); }));
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

TEST_F(RecorderTest, withoutDevicesTheScreenIsRecordedAlone)
{
    ClipOutcome outcome;
    recorder.setOnClip([&](const ClipOutcome& told) { outcome = told; });
    startScreen();
    recorder.session().configure("no-such-camera", "no-such-microphone");
    recorder.session().startCamera();
    record(0.5);
    const auto duration = finish();
    ASSERT_TRUE(duration);
    EXPECT_EQ(outcome.duration, duration);
    EXPECT_GE(outcome.counts[static_cast<std::size_t>(TrackKind::screen)].appended, 1);
    EXPECT_FALSE(test::probeStream(file, "v:0").empty());
    EXPECT_TRUE(test::probeStream(file, "v:1").empty());
    EXPECT_TRUE(test::probeStream(file, "a:0").empty());
}

} // namespace vantry
