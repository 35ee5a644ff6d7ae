#include "capture/CaptureSession.h"

#include "desktop/CameraPattern.h"
#include "support/Collected.h"
#include "support/DeviceProgram.h"
#include "support/MediaServer.h"
#include "support/Troubles.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <memory>

namespace vantry {

namespace {

using test::DeviceProgram;
using test::pumpUntil;
using test::uniqueName;
using namespace std::chrono_literals;

class CaptureSessionTest : public test::EventLoopTest {
protected:
    CaptureSessionTest()
    {
        session.setOnTrouble(troubles.handler());
        session.preview().setOnChange([this] { interruptions += !session.preview().latest(); });
    }

    void settle()
    {
        const auto settled = session.settled();
        ASSERT_TRUE(pumpUntil([&] { return settled.isFinished(); }));
    }
    bool awaitPictures(std::size_t more)
    {
        const auto wanted = pictures.count() + more;
        return pumpUntil([&] { return pictures.count() >= wanted; });
    }
    bool awaitTrouble(CaptureSource source, const std::string& part)
    {
        return pumpUntil([&] { return troubles.of(source).find(part) != std::string::npos; });
    }
    bool awaitNoTrouble(CaptureSource source)
    {
        return pumpUntil([&] { return troubles.of(source).empty(); });
    }
    bool awaitCamera(const std::string& name)
    {
        session.setOnDevices({}); // Connects.
        return pumpUntil([&] { return session.devices().hasCamera(name); });
    }

    test::Collected<PictureSample> pictures;
    test::Collected<SoundSample> sounds;
    test::Troubles troubles;
    std::atomic<int> interruptions = 0; ///< How often the preview became empty.
    Worker queue{ "vantry.capture" };
    CaptureSession session{ queue,
        { .onPicture = [this](const PictureSample& sample) { pictures.add(sample); },
            .onSound = [this](const SoundSample& sample) { sounds.add(sample); } } };
};

/// The largest difference from the pattern's colours in the middle of the bars, inside the box's rows and outside.
double differenceFrom(const CameraPattern& pattern, const Picture& picture)
{
    double worst = 0;
    for (const int y : { picture.height() / 4, picture.height() / 2 })
        for (int i = 0; i < 32; ++i) {
            const int x = (2 * i + 1) * picture.width() / 64;
            const auto colour = pattern.at(x, y);
            const double red = colour.red / 255.0, green = colour.green / 255.0, blue = colour.blue / 255.0;
            const double luma = 0.2126 * red + 0.7152 * green + 0.0722 * blue;
            worst = std::max({ worst, std::abs(picture.plane(PlaneY).row(y)[x] - (16 + 219 * luma)),
                std::abs(picture.plane(PlaneCb).row(y / 2)[x / 2] - (128 + 224 * (blue - luma) / 1.8556)),
                std::abs(picture.plane(PlaneCr).row(y / 2)[x / 2] - (128 + 224 * (red - luma) / 1.5748)) });
        }
    return worst;
}

double differenceFromPattern(const Picture& picture)
{
    double least = std::numeric_limits<double>::max();
    for (int phase = 0; phase < CameraPattern::period; ++phase)
        least = std::min(least, differenceFrom(CameraPattern({ picture.width(), picture.height() }, phase), picture));
    return least;
}

} // namespace

TEST_F(CaptureSessionTest, everyFormatOfACameraBecomesTheSamePicture)
{
    for (const auto* format : { "YUY2", "NV12", "I420", "BGRx", "MJPG" }) {
        const auto name = uniqueName("camera");
        const DeviceProgram program("testcamera", { name, "Camera", format, "960x540" });
        ASSERT_TRUE(awaitCamera(name)) << format;
        session.configure(name, {});
        session.startCamera();
        settle();
        EXPECT_EQ(session.cameraSize(), (PictureSize{ 960, 540 })) << format;
        pictures.clear();
        ASSERT_TRUE(awaitPictures(10)) << format;
        const auto seen = pictures.all();
        for (std::size_t i = 0; i < seen.size(); ++i) {
            ASSERT_EQ(seen[i].picture.width(), 960) << format;
            EXPECT_LE(differenceFromPattern(seen[i].picture), format == std::string("MJPG") ? 16 : 2) << format << ' ' << i;
            EXPECT_LT(HostClock::now() - seen[i].time, 10s) << format;
            EXPECT_TRUE(i == 0 || seen[i].time > seen[i - 1].time) << format;
        }
    }
}

TEST_F(CaptureSessionTest, choosingTheSameDevicesAgainDisturbsNothing)
{
    const test::OwnCamera camera;
    ASSERT_TRUE(awaitCamera(camera.name()));
    session.configure(camera.name(), "test-microphone");
    EXPECT_EQ(session.micPower(), PowerMeter::silence);
    session.startCamera();
    ASSERT_TRUE(awaitPictures(5));
    EXPECT_EQ(session.cameraSize(), (PictureSize{ 1920, 1080 }));
    session.configure(camera.name(), {});
    settle();
    EXPECT_FALSE(session.hasMic());
    session.configure(camera.name(), "test-microphone");
    session.startCamera();
    settle();
    EXPECT_TRUE(session.hasMic());
    EXPECT_TRUE(awaitPictures(5));
    // The test microphone hears a tone of a quarter of full scale.
    EXPECT_TRUE(pumpUntil([&] { return std::abs(session.micPower() + 15.05F) < 0.3F; })) << session.micPower();
    EXPECT_EQ(interruptions, 0);

    session.stopCamera();
    settle();
    EXPECT_TRUE(session.hasCamera());
    EXPECT_EQ(session.cameraSize(), (PictureSize{ 1920, 1080 }));
    EXPECT_FALSE(session.preview().latest());
    EXPECT_EQ(session.micPower(), PowerMeter::silence);
    EXPECT_EQ(interruptions, 1);
    EXPECT_EQ(troubles.count(), 0);
}

TEST_F(CaptureSessionTest, goesOnWithACameraThatWasAway)
{
    const auto name = uniqueName("camera");
    const DeviceProgram::Arguments arguments{ name, "Desk camera" };
    session.configure(name, "test-microphone");
    session.startCamera();
    settle();
    EXPECT_FALSE(session.cameraSize()) << "it is not there yet";
    EXPECT_TRUE(session.hasMic());
    EXPECT_TRUE(pumpUntil([&] { return sounds.count() > 3; }));
    std::optional<DeviceProgram> program(std::in_place, "testcamera", arguments);
    ASSERT_TRUE(awaitPictures(3));
    EXPECT_EQ(troubles.count(), 0);

    program.reset();
    EXPECT_TRUE(awaitTrouble(CaptureSource::Camera, "Desk camera is gone. Everything else goes on"));
    EXPECT_TRUE(pumpUntil([&] { return !session.preview().latest(); }));
    // A clip that begins now still has room for it, and the microphone did not notice.
    EXPECT_EQ(session.cameraSize(), (PictureSize{ 1920, 1080 }));
    const auto heard = sounds.count();
    EXPECT_TRUE(pumpUntil([&] { return sounds.count() > heard + 3; }));

    program.emplace("testcamera", arguments);
    EXPECT_TRUE(awaitPictures(3));
    EXPECT_EQ(troubles.of(CaptureSource::Camera), "");
    EXPECT_TRUE(session.preview().latest());
}

TEST_F(CaptureSessionTest, opensACameraAgainThatFellSilent)
{
    const auto name = uniqueName("camera");
    DeviceProgram program("testcamera", { name, "Desk camera" });
    ASSERT_TRUE(awaitCamera(name));
    session.configure(name, "test-microphone");
    session.startCamera();
    ASSERT_TRUE(awaitPictures(3));
    program.freeze();
    EXPECT_TRUE(awaitTrouble(CaptureSource::Camera, "Desk camera: The camera sends no pictures"));
    EXPECT_FALSE(session.preview().latest());
    EXPECT_TRUE(pumpUntil([&] { return !session.hasCamera(); }));
    EXPECT_EQ(session.refusal(), troubles.of(CaptureSource::Camera));
    program.thaw();
    EXPECT_TRUE(awaitPictures(1));
    EXPECT_TRUE(session.hasCamera());
    EXPECT_TRUE(awaitNoTrouble(CaptureSource::Camera));
    EXPECT_THAT(session.refusal(), testing::IsEmpty());
}

TEST_F(CaptureSessionTest, aMicrophoneThatFallsSilentIsToldUntilItIsHeardAgain)
{
    const auto name = uniqueName("microphone");
    DeviceProgram program("testmicrophone", { name, "Desk microphone" });
    session.configure({}, name);
    session.startCamera();
    ASSERT_TRUE(pumpUntil([&] { return session.micPower() > -16; }));
    EXPECT_EQ(troubles.count(), 0);
    program.freeze();
    EXPECT_TRUE(pumpUntil([&] { return session.micPower() < -60; })) << "what does not come cannot be loud";
    EXPECT_EQ(troubles.count(), 0);
    EXPECT_TRUE(awaitTrouble(CaptureSource::Microphone, "Desk microphone: no sound comes from it."));
    // Also when it was opened again to no avail.
    const auto told = HostClock::now();
    EXPECT_TRUE(pumpUntil([&] { return HostClock::now() > told + 3s; }));
    EXPECT_EQ(troubles.count(), 1);
    program.thaw();
    EXPECT_TRUE(awaitNoTrouble(CaptureSource::Microphone));
    EXPECT_GT(session.micPower(), -60);
    EXPECT_EQ(troubles.count(), 2);
}

TEST_F(CaptureSessionTest, findsTheMediaServerWhenItComesAndWhenItIsBack)
{
    std::optional<test::MediaServer> server(std::in_place);
    server->kill();
    std::atomic<int> lists = 0;
    session.setOnDevices([&](const MediaDeviceList&) { ++lists; });
    EXPECT_TRUE(awaitTrouble(CaptureSource::MediaServer, "There is no PipeWire server"));
    EXPECT_FALSE(session.cameraSize());
    EXPECT_FALSE(session.hasMic());

    server->start();
    EXPECT_TRUE(pumpUntil([&] { return lists == 1; }));
    EXPECT_EQ(troubles.of(CaptureSource::MediaServer), "");
    const DeviceProgram camera("testcamera", { "lonely-camera" });
    EXPECT_TRUE(pumpUntil([&] { return session.devices().hasCamera("lonely-camera"); }));
    server->kill();
    EXPECT_TRUE(awaitTrouble(CaptureSource::MediaServer, "lost"));
    EXPECT_TRUE(session.devices().cameras.empty());
    server->start();
    EXPECT_TRUE(awaitNoTrouble(CaptureSource::MediaServer));
    EXPECT_EQ(lists, 3);
    EXPECT_FALSE(session.hasMic());
    EXPECT_EQ(troubles.count(), 4) << "each change is told once";
}

TEST_F(CaptureSessionTest, aServerThatDoesNotAnswerIsToldUntilItDoes)
{
    test::MediaServer server;
    const DeviceProgram camera("testcamera", { "lonely-camera" });
    server.freeze();
    const auto lists = std::make_shared<std::atomic<int>>(0); // The session outlives this test's body.
    const auto listing = session.setOnDevices([lists](const MediaDeviceList&) { ++*lists; });
    session.configure("lonely-camera", {});
    session.startCamera();
    settle();
    EXPECT_FALSE(session.cameraSize());
    EXPECT_EQ(session.refusal(), "");
    EXPECT_FALSE(listing.isFinished()) << "nobody was held up";
    EXPECT_TRUE(awaitTrouble(CaptureSource::MediaServer, "The media server does not answer"));
    EXPECT_TRUE(pumpUntil([&] { return listing.isFinished(); }));
    EXPECT_FALSE(listing.result());
    EXPECT_EQ(*lists, 0) << "nobody knows what there is";
    server.thaw();
    EXPECT_TRUE(awaitNoTrouble(CaptureSource::MediaServer));
    EXPECT_TRUE(pumpUntil([&] { return session.cameraSize().has_value(); }));
    EXPECT_GE(*lists, 1);
}

} // namespace vantry
