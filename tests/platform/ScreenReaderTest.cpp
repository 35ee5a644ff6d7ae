#include "platform/ScreenReader.h"

#include "base/AppError.h"
#include "support/Command.h"
#include "support/HoldsSoon.h"
#include "support/TestDesktop.h"
#include "support/XServer.h"

#include <gmock/gmock.h>

#include <cstring>
#include <memory>
#include <random>
#include <thread>
#include <utility>

namespace vantry {

namespace {

using test::holdsSoon;
using test::Program;
using test::TestDesktop;
using test::XServer;

constexpr std::uint32_t leftOutProcess = 4'000'000; // no process has this number
constexpr std::uint32_t yellow = 0xFFFF01, red = 0xFF0000, green = 0x00FF00, blue = 0x0000FF, grey = 0x405060;
constexpr PixelRect screen{ 0, 0, 640, 480 };

/// The picture that the readings add up to.
class Canvas {
public:
    explicit Canvas(ScreenReader& reader)
        : m_reader(reader)
        , m_pixels(static_cast<std::size_t>(reader.width() * reader.height()))
    {
    }

    /// The areas that were read.
    std::vector<PixelRect> read()
    {
        std::vector<PixelRect> areas;
        for (const auto& block : m_reader.read().blocks) {
            areas.push_back(block.area);
            for (int y = block.area.y; y < block.area.bottom(); ++y)
                for (int x = block.area.x; x < block.area.right(); ++x) {
                    std::uint32_t pixel = 0;
                    std::memcpy(&pixel, block.at(x, y), sizeof pixel);
                    at(x, y) = pixel & 0xFFFFFF;
                }
        }
        return areas;
    }

    /// Reads until there is nothing new, not even what the server still had to show. False when that never comes.
    bool settle()
    {
        return holdsSoon([this, quiet = 0]() mutable { return (quiet = read().empty() ? quiet + 1 : 0) == 3; });
    }

    template <typename Condition>
    bool readUntil(Condition condition)
    {
        return holdsSoon([&] {
            read();
            return condition();
        });
    }

    std::uint32_t& at(int x, int y) { return m_pixels[static_cast<std::size_t>(y * m_reader.width() + x)]; }
    const std::vector<std::uint32_t>& pixels() const { return m_pixels; }
    auto count(std::uint32_t colour) const { return std::count(m_pixels.begin(), m_pixels.end(), colour); }

private:
    ScreenReader& m_reader;
    std::vector<std::uint32_t> m_pixels;
};

Display onlyDisplay()
{
    return displays().at(0);
}

std::string failureOf(ScreenReader& reader)
{
    std::string failure;
    holdsSoon([&] {
        try {
            static_cast<void>(reader.read());
        } catch (const AppError& error) {
            failure = error.what();
        }
        return !failure.empty();
    });
    return failure;
}

/// Windows of several kinds, on which random things are done.
class Storm {
public:
    Storm(TestDesktop& desktop, unsigned seed)
        : m_desktop(desktop)
        , m_random(seed)
    {
        for (int i = 0; i < 9; ++i)
            open();
    }

    void step()
    {
        auto& window = m_windows[m_random() % m_windows.size()];
        switch (m_random() % 12) {
        case 0:
        case 1:
            return m_desktop.place(window, anyPlace());
        case 2:
            return m_desktop.raise(window);
        case 3:
            return m_desktop.lower(window);
        case 4:
            return m_desktop.hide(window);
        case 5:
            return m_desktop.show(window);
        case 6:
            m_desktop.close(std::exchange(window, m_windows.back()));
            m_windows.pop_back();
            return open();
        case 7:
            return m_desktop.shape(window, { { 0, 0, number(200), number(20) }, { number(50), 10, number(100), number(200) } });
        case 8:
            return m_desktop.movePointer(number(screen.width), number(screen.height));
        default:
            m_desktop.fill(window, { number(100), number(100), 1 + number(150), 1 + number(150) }, colour());
        }
    }

    /// Closes those that are left out; what is seen then is what had to be read before.
    void closeLeftOut()
    {
        for (const auto window : m_leftOut)
            m_desktop.close(window);
    }

private:
    int number(int end) { return static_cast<int>(m_random() % static_cast<unsigned>(end)); }
    std::uint32_t colour() { return static_cast<std::uint32_t>(m_random() & 0xFFFFFF); }
    PixelRect anyPlace() { return { number(700) - 60, number(540) - 60, 1 + number(300), 1 + number(250) }; }

    void open()
    {
        const bool leftOut = m_random() % 3 == 0;
        TestDesktop::Look look{ .place = anyPlace(), .colour = colour(), .border = number(2) * number(7) };
        if (leftOut)
            look.process = leftOutProcess;
        m_windows.push_back(m_desktop.open(look));
        if (leftOut)
            m_leftOut.push_back(m_windows.back());
    }

    TestDesktop& m_desktop;
    std::mt19937 m_random;
    std::vector<xcb_window_t> m_windows;
    std::vector<xcb_window_t> m_leftOut;
};

/// The pixels that a new reader sees.
std::vector<std::uint32_t> freshlyRead()
{
    ScreenReader reader(onlyDisplay(), {});
    Canvas canvas(reader);
    canvas.settle();
    return canvas.pixels();
}

class ScreenReaderTest : public testing::Test {
protected:
    /// A compositing manager at work.
    std::unique_ptr<Program> compositor()
    {
        auto program =
            std::make_unique<Program>(std::vector<std::string>{ "picom", "--config", "/dev/null", "--backend", "xrender" });
        const auto& connection = m_desktop.connection();
        EXPECT_TRUE(holdsSoon([&, selection = connection.atom("_NET_WM_CM_S0")] {
            const auto owner = connection.receive(xcb_get_selection_owner_reply, xcb_get_selection_owner(connection, selection));
            return owner && owner->owner != XCB_NONE;
        }));
        return program;
    }

    bool isFramed(xcb_window_t window)
    {
        const auto& connection = m_desktop.connection();
        const auto tree = connection.receive(xcb_query_tree_reply, xcb_query_tree(connection, window));
        return tree && tree->parent != connection.root();
    }

    XServer m_server{ screen.width, screen.height };
    TestDesktop m_desktop;
};

} // namespace

TEST_F(ScreenReaderTest, readsEverythingOnceAndThenOnlyWhatChanges)
{
    const auto window = m_desktop.open({ .place = { 100, 100, 200, 150 }, .colour = blue });
    m_desktop.movePointer(600, 400);
    m_desktop.finish();
    ScreenReader reader(onlyDisplay(), {});
    Canvas canvas(reader);
    EXPECT_EQ(canvas.read(), std::vector<PixelRect>({ screen }));
    EXPECT_EQ(canvas.count(blue), 200 * 150);
    ASSERT_TRUE(canvas.settle());
    for (int i = 0; i < 50; ++i)
        EXPECT_TRUE(canvas.read().empty());

    m_desktop.fill(window, { 20, 30, 10, 5 }, green);
    std::vector<PixelRect> areas;
    ASSERT_TRUE(holdsSoon([&] {
        areas = canvas.read();
        return canvas.count(green) == 10 * 5;
    }));
    ASSERT_EQ(areas.size(), 1u);
    EXPECT_LE(areas[0].width * areas[0].height, 64 * 64);
    EXPECT_EQ(canvas.at(120, 130), green);
}

TEST_F(ScreenReaderTest, drawsTheCursorAndErasesItWithoutTraces)
{
    m_desktop.open({ .place = screen, .colour = grey });
    m_desktop.movePointer(300, 200);
    m_desktop.finish();
    ScreenReader reader(onlyDisplay(), {});
    Canvas canvas(reader);
    canvas.read();
    const auto drawn = screen.width * screen.height - canvas.count(grey);
    EXPECT_GT(drawn, 20);
    for (const auto& [x, y] : { std::pair(17, 33), std::pair(18, 33), std::pair(301, 203), std::pair(303, 201) }) {
        m_desktop.movePointer(x, y);
        m_desktop.finish();
        canvas.read();
        EXPECT_NE(canvas.at(x, y), grey);
        EXPECT_EQ(screen.width * screen.height - canvas.count(grey), drawn);
    }
    EXPECT_TRUE(canvas.pixels() == freshlyRead());
}

TEST_F(ScreenReaderTest, keepsUpWithAnythingThatWindowsDoAndLeavesThoseOutThatItShould)
{
    for (unsigned seed = 1; seed <= 12; ++seed) {
        TestDesktop desktop;
        desktop.setRootColour(grey + seed);
        ScreenReader reader(onlyDisplay(), { leftOutProcess });
        Canvas canvas(reader);
        Storm storm(desktop, seed);
        for (int i = 0; i < 250; ++i) {
            storm.step();
            if (i % 5 == static_cast<int>(seed % 5))
                canvas.read();
        }
        desktop.finish();
        ASSERT_TRUE(canvas.settle());
        storm.closeLeftOut();
        desktop.finish();
        EXPECT_TRUE(canvas.pixels() == freshlyRead()) << "seed " << seed;
    }
}

TEST_F(ScreenReaderTest, keepsUpBesideACompositingManager)
{
    const auto manager = compositor();
    for (unsigned seed = 1; seed <= 4; ++seed) {
        ScreenReader reader(onlyDisplay(), { leftOutProcess }), plainReader(onlyDisplay(), {});
        Canvas canvas(reader), plain(plainReader);
        Storm storm(m_desktop, seed);
        for (int i = 0; i < 120; ++i) {
            storm.step();
            canvas.read();
        }
        storm.closeLeftOut();
        EXPECT_TRUE(canvas.readUntil([&] {
            plain.read();
            return plain.pixels() == canvas.pixels();
        })) << "seed "
            << seed;
    }
}

TEST_F(ScreenReaderTest, seesWhatIsDrawnBeneathAWindowThatIsLeftOut)
{
    for (const bool composited : { false, true }) {
        TestDesktop desktop;
        const auto manager = composited ? compositor() : nullptr;
        const auto beneath = desktop.open({ .place = { 50, 50, 400, 300 }, .colour = blue });
        const auto above = desktop.open({ .place = { 100, 100, 200, 100 }, .colour = red, .process = leftOutProcess });
        desktop.shape(above, { { 0, 0, 150, 100 }, { 150, 20, 50, 60 } });
        desktop.movePointer(630, 470);
        desktop.finish();
        ScreenReader reader(onlyDisplay(), { leftOutProcess });
        Canvas canvas(reader);
        EXPECT_TRUE(canvas.readUntil([&] { return canvas.count(blue) == 400 * 300; })) << composited;
        EXPECT_EQ(canvas.count(red), 0);
        for (std::uint32_t i = 0; i < 10; ++i) {
            desktop.fill(beneath, { 60 + static_cast<int>(i), 60, 30, 30 }, green + i);
            EXPECT_TRUE(canvas.readUntil([&] { return canvas.count(green + i) == 30 * 30; })) << composited;
        }
        const auto top = desktop.open({ .place = { 120, 120, 40, 40 }, .colour = yellow });
        EXPECT_TRUE(canvas.readUntil([&] { return canvas.count(yellow) == 40 * 40; })) << "a foreign window above ours is seen";
        desktop.close(top);
        EXPECT_TRUE(canvas.readUntil([&] { return canvas.count(yellow) == 0; }));
        EXPECT_EQ(canvas.count(red), 0);
    }
}

TEST_F(ScreenReaderTest, neverShowsAWindowThatIsLeftOutWhileItMoves)
{
    m_desktop.open({ .place = { 0, 0, 640, 300 }, .colour = blue });
    m_desktop.finish();
    const std::jthread mover([](const std::stop_token& stop) {
        TestDesktop own;
        std::mt19937 random(3);
        const TestDesktop::Look look{ .place = { 200, 200, 150, 150 }, .colour = red, .process = leftOutProcess };
        auto window = own.open(look);
        while (!stop.stop_requested()) {
            own.place(window, { static_cast<int>(random() % 600), static_cast<int>(random() % 400), 150, 150 });
            if (random() % 8 == 0) {
                own.close(window);
                window = own.open(look);
            }
            own.finish();
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 3000));
        }
    });
    ScreenReader reader(onlyDisplay(), { leftOutProcess });
    Canvas canvas(reader);
    for (int i = 0; i < 400; ++i) {
        canvas.read();
        EXPECT_EQ(canvas.count(red), 0) << "reading " << i;
    }
}

TEST_F(ScreenReaderTest, leavesOutTheFramesOfAWindowManager)
{
    const Program manager({ "openbox" });
    ASSERT_TRUE(
        holdsSoon([] { return test::runCommand("xprop -root _NET_SUPPORTING_WM_CHECK").find("window id") != std::string::npos; }));
    ScreenReader reader(onlyDisplay(), { leftOutProcess });
    Canvas canvas(reader);
    m_desktop.movePointer(639, 479);
    m_desktop.finish();
    const auto empty = freshlyRead();
    const auto window =
        m_desktop.open({ .place = { 100, 100, 300, 200 }, .colour = red, .process = leftOutProcess, .managed = true });
    ASSERT_TRUE(canvas.readUntil([&] {
        m_desktop.show(window); // A window manager that has only just started may have missed it.
        return isFramed(window);
    }));
    ASSERT_TRUE(canvas.settle());
    EXPECT_NE(m_desktop.pixels(screen), empty);
    EXPECT_TRUE(canvas.readUntil([&] { return canvas.pixels() == empty; }));
}

TEST_F(ScreenReaderTest, leavesOutEveryWindowOfItsOwnProcessSignedOrNot)
{
    m_desktop.setRootColour(blue);
    m_desktop.open({ .place = { 100, 100, 300, 200 }, .colour = red });
    m_desktop.movePointer(639, 479);
    m_desktop.finish();
    ScreenReader reader(onlyDisplay(), { getpid() });
    Canvas canvas(reader);
    ASSERT_TRUE(canvas.settle());
    EXPECT_EQ(canvas.count(red), 0);
    EXPECT_EQ(canvas.at(200, 200), blue);
}

TEST_F(ScreenReaderTest, readsAPartOfTheDesktopInEvenSizes)
{
    ASSERT_EQ(Program({ "xrandr", "--setmonitor", "SIDE", "321/100x301/100+319+90", "none" }).wait(), 0);
    const auto all = displays();
    const auto side = std::ranges::find(all, "SIDE", &Display::name);
    ASSERT_NE(side, all.end());
    const auto window = m_desktop.open({ .place = { 319, 90, 321, 301 }, .colour = green });
    m_desktop.movePointer(10, 10);
    m_desktop.finish();
    ScreenReader reader(*side, {});
    Canvas canvas(reader);
    canvas.read();
    EXPECT_EQ(canvas.count(green), 320 * 300);
    m_desktop.fill(window, { 0, 0, 1, 1 }, red);
    m_desktop.movePointer(319 + 100, 90 + 100);
    EXPECT_TRUE(canvas.readUntil([&] { return canvas.at(0, 0) == red && canvas.at(100, 100) != green; }))
        << "the change and the cursor";
}

TEST_F(ScreenReaderTest, endsWithTheReasonWhenItsDisplayIsGone)
{
    const auto xrandr = [](std::vector<std::string> command) {
        command.insert(command.begin(), "xrandr");
        ASSERT_EQ(Program(command).wait(), 0);
    };
    const auto name = onlyDisplay().name;
    {
        ScreenReader reader(onlyDisplay(), {});
        xrandr({ "--newmode", "small", "10", "500", "510", "520", "530", "400", "410", "420", "430" });
        xrandr({ "--addmode", name, "small" });
        xrandr({ "--output", name, "--mode", "small" });
        EXPECT_EQ(failureOf(reader), "The display screen changed its size while it was recorded");
    }
    {
        ScreenReader reader(onlyDisplay(), {});
        xrandr({ "--fb", "640x480", "--output", name, "--off" });
        EXPECT_EQ(failureOf(reader), "The display screen is no longer there");
    }
    ScreenReader reader(onlyDisplay(), {});
    m_server.kill();
    EXPECT_EQ(failureOf(reader), "The connection to the display server was lost");
}

} // namespace vantry
