#include "capture/ScreenStream.h"

#include "support/Collected.h"
#include "support/HoldsSoon.h"
#include "support/TestDesktop.h"
#include "support/XServer.h"

#include <gmock/gmock.h>

#include <atomic>
#include <mutex>
#include <thread>

namespace vantry {

namespace {

using test::holdsSoon;
using test::TestDesktop;

constexpr std::uint32_t grey = 0x404040, white = 0xFFFFFF;

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
        const ScreenStream::Handlers handlers{ .onFrame = [this](const ScreenFrame& frame) { frames.add(frame); },
            .onError = [this](const AppError& error) { errors.add(error.what()); } };
        return std::make_unique<ScreenStream>(displays().at(0), queue, handlers, ScreenStream::Options());
    }

    bool shows(int x, int y, std::uint32_t colour) const
    {
        return holdsSoon([&] {
            const auto all = frames.all();
            return !all.empty() && all.back().picture.plane(PlaneY).row(y)[x] == lumaOf(colour);
        });
    }

    test::XServer server{ 641, 481 };
    TestDesktop desktop;
    xcb_window_t window = XCB_NONE;
    test::Collected<ScreenFrame> frames;
    test::Collected<std::string> errors;
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
    ASSERT_TRUE(shows(100, 100, grey));
    const auto first = frames.all().at(0);
    EXPECT_EQ(first.picture.width(), 640);
    EXPECT_EQ(first.picture.plane(PlaneCb).row(10)[10], 128);
    EXPECT_GE(first.time, before);

    const auto painted = HostClock::now();
    desktop.fill(window, { 50, 60, 31, 21 }, white);
    ASSERT_TRUE(shows(50, 60, white));
    const auto last = frames.all().back();
    EXPECT_GE(last.time, painted);
    EXPECT_LE(last.time, HostClock::now());
    const auto luma = last.picture.plane(PlaneY);
    EXPECT_EQ(luma.row(80)[80], lumaOf(white));
    EXPECT_EQ(luma.row(81)[80], lumaOf(grey));
    EXPECT_EQ(luma.row(80)[81], lumaOf(grey));
    EXPECT_EQ(first.picture.plane(PlaneY).row(80)[80], lumaOf(grey)) << "a delivered picture never changes";
    // Painted again as it was: work for the stream, but no picture.
    const auto count = frames.count();
    for (const auto end = HostClock::now() + std::chrono::milliseconds(700); HostClock::now() < end;) {
        desktop.fill(window, { 50, 60, 31, 21 }, white);
        desktop.finish();
    }
    EXPECT_EQ(frames.count(), count);
}

TEST_F(ScreenStreamTest, delivers30FramesASecondAtMost)
{
    const auto stream = start();
    const Painter painter(window);
    ASSERT_TRUE(holdsSoon([&] { return frames.count() > 45; }));
    const auto all = frames.all();
    EXPECT_LE(44.0, 30 * seconds(all[45].time - all[0].time) + 1);
    for (std::size_t i = 1; i < all.size(); ++i)
        EXPECT_LT(all[i - 1].time, all[i].time);
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
    EXPECT_TRUE(shows(100, 100, white)) << "what changed meanwhile is in the next frame";
    EXPECT_LE(frames.count(), 9u);
}

TEST_F(ScreenStreamTest, callsNobodyOnceStopped)
{
    const Painter painter(window);
    for (int i = 0; i < 5; ++i) {
        const auto stream = start();
        ASSERT_TRUE(holdsSoon([&, before = frames.count()] { return frames.count() > before + 1; }));
        stream->stop();
        const auto count = frames.count();
        queue.sync([] {});
        EXPECT_EQ(frames.count(), count);
    }
}

TEST_F(ScreenStreamTest, endsWithAnErrorWhenTheServerDies)
{
    const auto stream = start();
    ASSERT_TRUE(shows(100, 100, grey));
    server.kill();
    EXPECT_TRUE(holdsSoon([&] { return errors.count() > 0; }));
    stream->stop();
    EXPECT_THAT(errors.all(), testing::ElementsAre("The connection to the display server was lost"));
}

} // namespace vantry
