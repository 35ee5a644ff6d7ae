#include "capture/ScreenStream.h"

#include "support/TestDesktop.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace vantry {

namespace {

using test::TestDesktop;
using test::XServer;

constexpr std::uint32_t grey = 0x404040, white = 0xFFFFFF;

/// Takes frames on a capture queue and lets the test wait for them.
class Receiver {
public:
    ScreenStream::Handlers handlers()
    {
        return { .onFrame = [this](const ScreenFrame& frame) { take(frame); },
            .onError = [this](const AppError& error) { fail(error); } };
    }

    template <typename Condition>
    bool wait(Condition condition)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(20), [&] { return condition(m_frames, m_error); });
    }

    bool waitForLuma(int x, int y, int luma)
    {
        return wait([=](const auto& frames, const auto&) {
            return !frames.empty() && frames.back().picture.plane(PlaneY).row(y)[x] == luma;
        });
    }

    std::vector<ScreenFrame> frames()
    {
        std::lock_guard lock(m_mutex);
        return m_frames;
    }

private:
    void take(const ScreenFrame& frame)
    {
        std::lock_guard lock(m_mutex);
        m_frames.push_back(frame);
        m_changed.notify_all();
    }

    void fail(const AppError& error)
    {
        std::lock_guard lock(m_mutex);
        m_error += error.what();
        m_changed.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<ScreenFrame> m_frames;
    std::string m_error;
};

/// Luma of a grey.
int lumaOf(std::uint32_t colour)
{
    return static_cast<int>(16 + 219 * (colour & 0xFF) / 255.0 + 0.5);
}

class ScreenStreamTest : public testing::Test {
protected:
    void SetUp() override
    {
        window = desktop.open({ .place = { 0, 0, 641, 481 }, .colour = grey });
        desktop.movePointer(600, 440);
        desktop.finish();
    }

    std::unique_ptr<ScreenStream> start()
    {
        return std::make_unique<ScreenStream>(displays().at(0), queue, receiver.handlers(), ScreenStream::Options());
    }

    XServer server{ 641, 481 };
    TestDesktop desktop;
    xcb_window_t window = XCB_NONE;
    Receiver receiver;
    Worker queue{ "capture" };
};

/// Paints as fast as it can while it lives.
class Painter {
public:
    explicit Painter(xcb_window_t window)
        : m_thread([this, window] {
            TestDesktop desktop;
            for (std::uint32_t shade = 0; !m_done; shade = (shade + 1) % 256) {
                desktop.fill(window, { 0, 0, 300, 300 }, shade * 0x010101);
                desktop.finish();
            }
        })
    {
    }
    ~Painter()
    {
        m_done = true;
        m_thread.join();
    }

private:
    std::atomic<bool> m_done = false;
    std::thread m_thread;
};

} // namespace

TEST_F(ScreenStreamTest, deliversAFrameAtOnceAndThenWhatChangesWithItsTime)
{
    const auto before = HostClock::now();
    const auto stream = start();
    EXPECT_EQ(stream->width(), 640);
    EXPECT_EQ(stream->height(), 480);
    ASSERT_TRUE(receiver.waitForLuma(100, 100, lumaOf(grey)));
    const auto first = receiver.frames().at(0);
    EXPECT_EQ(first.picture.width(), 640);
    EXPECT_EQ(first.picture.plane(PlaneCb).row(10)[10], 128);
    EXPECT_GE(first.time, before);

    const auto painted = HostClock::now();
    desktop.fill(window, { 50, 60, 31, 21 }, white);
    ASSERT_TRUE(receiver.waitForLuma(50, 60, lumaOf(white)));
    const auto last = receiver.frames().back();
    EXPECT_GE(last.time, painted);
    EXPECT_LE(last.time, HostClock::now());
    EXPECT_EQ(last.picture.plane(PlaneY).row(80)[80], lumaOf(white));
    EXPECT_EQ(last.picture.plane(PlaneY).row(81)[80], lumaOf(grey));
    EXPECT_EQ(last.picture.plane(PlaneY).row(80)[81], lumaOf(grey));
    EXPECT_EQ(first.picture.plane(PlaneY).row(80)[80], lumaOf(grey)) << "a delivered picture never changes";
}

TEST_F(ScreenStreamTest, staysSilentWhileNothingLooksDifferent)
{
    const auto stream = start();
    ASSERT_TRUE(receiver.waitForLuma(100, 100, lumaOf(grey)));
    desktop.fill(window, { 0, 0, 10, 10 }, white);
    ASSERT_TRUE(receiver.waitForLuma(5, 5, lumaOf(white)));
    const auto count = receiver.frames().size();
    // Painted again as it was: work for the stream, but no picture.
    for (const auto end = HostClock::now() + std::chrono::milliseconds(700); HostClock::now() < end;) {
        desktop.fill(window, { 0, 0, 10, 10 }, white);
        desktop.finish();
    }
    EXPECT_EQ(receiver.frames().size(), count);
}

TEST_F(ScreenStreamTest, delivers30FramesASecondAtMost)
{
    const auto stream = start();
    const Painter painter(window);
    ASSERT_TRUE(receiver.wait([](const auto& frames, const auto&) { return frames.size() > 45; }));
    const auto frames = receiver.frames();
    EXPECT_LE(44.0, 30 * seconds(frames[45].time - frames[0].time) + 1);
    for (std::size_t i = 1; i < frames.size(); ++i)
        EXPECT_LT(frames[i - 1].time, frames[i].time);
}

TEST_F(ScreenStreamTest, waitsForAQueueThatIsBusyAndCatchesUp)
{
    std::mutex busy;
    std::unique_lock hold(busy);
    queue.post([&] { std::lock_guard wait(busy); });
    const auto stream = start();
    {
        const Painter painter(window);
        std::this_thread::sleep_for(std::chrono::milliseconds(500)); // In this time twice as many as may wait would come.
    }
    desktop.fill(window, { 0, 0, 300, 300 }, white);
    hold.unlock();
    EXPECT_TRUE(receiver.waitForLuma(100, 100, lumaOf(white))) << "what changed meanwhile is in the next frame";
    EXPECT_LE(receiver.frames().size(), 9u);
}

TEST_F(ScreenStreamTest, callsNobodyOnceStopped)
{
    const Painter painter(window);
    for (int i = 0; i < 5; ++i) {
        const auto stream = start();
        ASSERT_TRUE(receiver.wait(
            [before = receiver.frames().size()](const auto& frames, const auto&) { return frames.size() > before + 1; }));
        stream->stop();
        const auto count = receiver.frames().size();
        queue.sync([] {});
        EXPECT_EQ(receiver.frames().size(), count);
    }
}

TEST_F(ScreenStreamTest, endsWithAnErrorWhenTheServerDies)
{
    const auto stream = start();
    ASSERT_TRUE(receiver.waitForLuma(100, 100, lumaOf(grey)));
    server.kill();
    EXPECT_TRUE(
        receiver.wait([](const auto&, const auto& error) { return error == "The connection to the display server was lost"; }));
    stream->stop();
}

} // namespace vantry
