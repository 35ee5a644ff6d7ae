#include "platform/CameraStream.h"

#include "platform/MediaDevices.h"
#include "platform/PipeWireLoop.h"
#include "support/DeviceProgram.h"
#include "support/PumpUntil.h"

#include <gmock/gmock.h>

#include <mutex>
#include <optional>
#include <vector>

namespace vantry {

namespace {

using test::DeviceProgram;
using test::pumpUntil;
using test::uniqueName;

/// Looks through a camera and keeps what it sees of it, apart from the pixels.
class Viewer {
public:
    struct Seen {
        CameraMode mode;
        HostTime taken;
        HostTime arrived;
    };

    Viewer(PipeWireLoop& loop, const std::string& camera)
        : m_stream(std::in_place, loop, camera,
            CameraStream::Handlers{
                .onFrame = [this](const CameraFrame& frame) { add(frame); },
                .onMode = {},
                .onFailed = [this](const AppError& error) { fail(error.what()); },
            })
    {
    }

    std::vector<Seen> seen()
    {
        const std::lock_guard guard(m_mutex);
        return m_seen;
    }
    bool hasSeen(std::size_t count) { return seen().size() >= count; }
    std::optional<std::string> failure()
    {
        const std::lock_guard guard(m_mutex);
        return m_failure;
    }
    void close() { m_stream.reset(); }

private:
    void add(const CameraFrame& frame)
    {
        const std::lock_guard guard(m_mutex);
        m_seen.push_back({ frame.mode, frame.time, HostClock::now() });
    }
    void fail(const std::string& text)
    {
        const std::lock_guard guard(m_mutex);
        m_failure = text;
    }

    std::mutex m_mutex;
    std::vector<Seen> m_seen;
    std::optional<std::string> m_failure;
    std::optional<CameraStream> m_stream;
};

class CameraStreamTest : public test::EventLoopTest {
protected:
    bool awaitCamera(const std::string& name)
    {
        return pumpUntil([&] { return m_devices.list().hasCamera(name); });
    }

    PipeWireLoop m_loop{ "test.camera" };
    MediaDevices m_devices{ m_loop };
};

} // namespace

TEST_F(CameraStreamTest, takesFullHdAndKeepsTheTimeAtWhichAFrameWasTaken)
{
    const test::OwnCamera camera;
    ASSERT_TRUE(awaitCamera(camera.name()));
    Viewer viewer(m_loop, camera.name());
    ASSERT_TRUE(pumpUntil([&] { return viewer.hasSeen(20); }));
    const auto seen = viewer.seen();
    EXPECT_EQ(seen[0].mode.width, 1920);
    EXPECT_EQ(seen[0].mode.height, 1080);
    EXPECT_EQ(seen[0].mode.framesPerSecond, 30);
    EXPECT_NE(seen[0].mode.format, CameraFormat::Mjpg);
    for (std::size_t i = 0; i < seen.size(); ++i) {
        EXPECT_LE(seen[i].taken, seen[i].arrived);
        EXPECT_LT(seen[i].arrived - seen[i].taken, std::chrono::milliseconds(500));
        if (i > 0) {
            EXPECT_GT(seen[i].taken, seen[i - 1].taken);
        }
    }
}

TEST_F(CameraStreamTest, takesWhatTheCameraHas)
{
    const auto name = uniqueName("camera");
    const DeviceProgram program("testcamera", { name, "Small", "MJPG", "352x288" });
    ASSERT_TRUE(awaitCamera(name));
    Viewer viewer(m_loop, name);
    ASSERT_TRUE(pumpUntil([&] { return viewer.hasSeen(3); }));
    const auto mode = viewer.seen()[0].mode;
    EXPECT_EQ(mode.format, CameraFormat::Mjpg);
    EXPECT_EQ(mode.width, 352);
    EXPECT_EQ(mode.height, 288);
}

TEST_F(CameraStreamTest, aCameraThatGoesAwayStopsQuietlyAndANewStreamFindsItAgain)
{
    const auto name = uniqueName("camera");
    std::optional<DeviceProgram> program(std::in_place, "testcamera", DeviceProgram::Arguments{ name });
    ASSERT_TRUE(awaitCamera(name));
    Viewer viewer(m_loop, name);
    ASSERT_TRUE(pumpUntil([&] { return viewer.hasSeen(3); }));
    program.reset();
    ASSERT_TRUE(pumpUntil([&] { return !m_devices.list().hasCamera(name); }));
    viewer.close();

    program.emplace("testcamera", DeviceProgram::Arguments{ name });
    ASSERT_TRUE(awaitCamera(name));
    Viewer again(m_loop, name);
    EXPECT_TRUE(pumpUntil([&] { return again.hasSeen(3); }));
    // No other camera was looked through instead.
    EXPECT_FALSE(again.failure());
}

TEST_F(CameraStreamTest, opensAndClosesWithoutEnd)
{
    const test::OwnCamera camera;
    ASSERT_TRUE(awaitCamera(camera.name()));
    int successes = 0;
    for (int i = 0; i < 20; ++i) {
        Viewer viewer(m_loop, camera.name());
        // The desktop refuses a camera that it has not yet taken back.
        EXPECT_TRUE(i % 2 == 0 || pumpUntil([&] { return viewer.hasSeen(1) || viewer.failure(); }));
        successes += viewer.hasSeen(1);
    }
    EXPECT_GE(successes, 5);
    EXPECT_TRUE(m_loop.awaitServer());
}

} // namespace vantry
