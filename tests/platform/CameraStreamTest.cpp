#include "platform/CameraStream.h"

#include "platform/MediaDevices.h"
#include "platform/PipeWireLoop.h"
#include "support/Collected.h"
#include "support/DeviceProgram.h"
#include "support/PumpUntil.h"
#include "support/SpoiledMemory.h"

#include <atomic>
#include <random>
#include <thread>

namespace vantry {

namespace {

using test::pumpUntil;

/// Looks through a camera and keeps what it sees of it, apart from the pixels.
struct Viewer {
    struct Seen {
        CameraMode mode;
        HostTime taken;
        HostTime arrived;
    };

    test::Collected<Seen> seen;
    std::atomic<bool> hasFailed = false;
    const CameraStream stream;

    Viewer(PipeWireLoop& loop, const std::string& camera)
        : stream(loop, camera,
            CameraStream::Handlers{
                .onFrame =
                    [this](const CameraFrame& frame) {
                        seen.add({ frame.mode, frame.time, HostClock::now() });
                    },
                .onMode = {},
                .onFailed = [this](const AppError&) { hasFailed = true; },
            })
    {
    }
};

class CameraStreamTest : public test::EventLoopTest {
protected:
    void SetUp() override { ASSERT_TRUE(isThere(m_camera)); }

    bool isThere(const test::OwnCamera& camera)
    {
        return pumpUntil([&] { return m_devices.list() && m_devices.list()->hasCamera(camera.name()); });
    }

    PipeWireLoop m_loop{ "test.camera" };
    const MediaDevices m_devices{ m_loop };
    const test::OwnCamera m_camera;
};

} // namespace

TEST_F(CameraStreamTest, takesFullHdAndKeepsTheTimeAtWhichAFrameWasTaken)
{
    Viewer viewer(m_loop, m_camera.name());
    ASSERT_TRUE(pumpUntil([&] { return viewer.seen.count() >= 20; }));
    const auto seen = viewer.seen.all();
    EXPECT_EQ(seen[0].mode.width, 1920);
    EXPECT_EQ(seen[0].mode.height, 1080);
    EXPECT_EQ(seen[0].mode.framesPerSecond, 30);
    EXPECT_NE(seen[0].mode.format, CameraFormat::Mjpg);
    for (std::size_t i = 0; i < seen.size(); ++i) {
        EXPECT_LE(seen[i].taken, seen[i].arrived);
        EXPECT_LT(seen[i].arrived - seen[i].taken, std::chrono::milliseconds(500));
        EXPECT_TRUE(i == 0 || seen[i].taken > seen[i - 1].taken);
    }
}

TEST_F(CameraStreamTest, opensAndClosesWithoutEnd)
{
    int successes = 0;
    for (int i = 0; i < 20; ++i) {
        Viewer viewer(m_loop, m_camera.name());
        // The desktop refuses a camera that it has not yet taken back.
        EXPECT_TRUE(i % 2 == 0 || pumpUntil([&] { return viewer.seen.count() > 0 || viewer.hasFailed; }));
        successes += viewer.seen.count() > 0;
    }
    EXPECT_GE(successes, 5);
    EXPECT_TRUE(m_loop.awaitServer());
}

TEST_F(CameraStreamTest, aCameraIsPulledWhileItIsOpened)
{
    const test::SpoiledMemory spoiled;
    std::mt19937 random(1);
    std::uniform_int_distribution<> microseconds(0, 5000);
    for (int i = 0; i < 60; ++i) {
        std::optional<test::OwnCamera> camera(std::in_place);
        ASSERT_TRUE(isThere(*camera));
        const Viewer viewer(m_loop, camera->name());
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        camera.reset();
    }
    EXPECT_TRUE(m_loop.awaitServer());
}

} // namespace vantry
