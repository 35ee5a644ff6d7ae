#include "platform/ScreenReader.h"

#include "base/AppError.h"
#include "support/HoldsSoon.h"
#include "support/TestDesktop.h"
#include "support/XServer.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cstring>
#include <random>
#include <thread>

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
        const auto end = HostClock::now() + std::chrono::seconds(20);
        for (int quiet = 0; quiet < 3; quiet = read().empty() ? quiet + 1 : 0)
            if (HostClock::now() > end)
                return false;
        return true;
    }

    /// Reads until the condition holds. `areas`: what the last reading read.
    template <typename Condition>
    bool readUntil(Condition condition, std::vector<PixelRect>* areas = nullptr)
    {
        const auto end = HostClock::now() + std::chrono::seconds(20);
        do {
            if (HostClock::now() > end)
                return false;
            const auto latest = read();
            if (areas)
                *areas = latest;
        } while (!condition());
        return true;
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
    const auto end = HostClock::now() + std::chrono::seconds(20);
    try {
        while (HostClock::now() < end)
            static_cast<void>(reader.read());
    } catch (const AppError& error) {
        return error.what();
    }
    return {};
}

/// How many pixels differ, and where the first of them is.
std::string difference(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b)
{
    std::string found;
    int count = 0;
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i)
        if (a[i] != b[i] && count++ == 0)
            found = " first at " + std::to_string(i % screen.width) + "," + std::to_string(i / screen.width) + " "
                + std::to_string(a[i]) + "/" + std::to_string(b[i]);
    return count == 0 && a.size() == b.size() ? "" : std::to_string(count) + found;
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
            m_desktop.place(window, anyPlace());
            break;
        case 2:
            m_desktop.raise(window);
            break;
        case 3:
            m_desktop.lower(window);
            break;
        case 4:
            m_desktop.hide(window);
            break;
        case 5:
            m_desktop.show(window);
            break;
        case 6:
            m_desktop.close(window);
            window = m_windows.back();
            m_windows.pop_back();
            open();
            break;
        case 7:
            m_desktop.shape(window, { { 0, 0, number(200), number(20) }, { number(50), 10, number(100), number(200) } });
            break;
        case 8:
            m_desktop.movePointer(number(screen.width), number(screen.height));
            break;
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

void waitForCompositor(const TestDesktop& desktop)
{
    ASSERT_TRUE(holdsSoon([&, selection = desktop.connection().atom("_NET_WM_CM_S0")] {
        const auto cookie = xcb_get_selection_owner(desktop.connection(), selection);
        const auto owner = desktop.connection().receive(xcb_get_selection_owner_reply, cookie);
        return owner && owner->owner != XCB_NONE;
    }));
}

void waitForWindowManager(const TestDesktop& desktop)
{
    ASSERT_TRUE(holdsSoon([&, check = desktop.connection().atom("_NET_SUPPORTING_WM_CHECK")] {
        const auto cookie = xcb_get_property(desktop.connection(), 0, desktop.connection().root(), check, XCB_ATOM_WINDOW, 0, 1);
        const auto property = desktop.connection().receive(xcb_get_property_reply, cookie);
        return property && xcb_get_property_value_length(property.get()) > 0;
    }));
}

const std::vector<std::string> picom{ "picom", "--config", "/dev/null", "--backend", "xrender" };

} // namespace

TEST(ScreenReader, readsEverythingOnceAndThenOnlyWhatChanges)
{
    XServer server(screen.width, screen.height);
    TestDesktop desktop;
    const auto window = desktop.open({ .place = { 100, 100, 200, 150 }, .colour = blue });
    desktop.movePointer(600, 400);
    desktop.finish();
    ScreenReader reader(onlyDisplay(), {});
    Canvas canvas(reader);
    EXPECT_EQ(canvas.read(), std::vector<PixelRect>({ screen }));
    EXPECT_EQ(canvas.count(blue), 200 * 150);
    ASSERT_TRUE(canvas.settle());
    for (int i = 0; i < 50; ++i)
        EXPECT_TRUE(canvas.read().empty());

    desktop.fill(window, { 20, 30, 10, 5 }, green);
    desktop.finish();
    std::vector<PixelRect> areas;
    ASSERT_TRUE(canvas.readUntil([&] { return canvas.count(green) == 10 * 5; }, &areas));
    ASSERT_EQ(areas.size(), 1u);
    EXPECT_LE(areas[0].width * areas[0].height, 64 * 64);
    EXPECT_EQ(canvas.at(120, 130), green);
}

TEST(ScreenReader, drawsTheCursorAndErasesItWithoutTraces)
{
    XServer server(screen.width, screen.height);
    TestDesktop desktop;
    desktop.open({ .place = screen, .colour = grey });
    desktop.movePointer(300, 200);
    desktop.finish();
    ScreenReader reader(onlyDisplay(), {});
    Canvas canvas(reader);
    canvas.read();
    const auto drawn = screen.width * screen.height - canvas.count(grey);
    EXPECT_GT(drawn, 20);
    EXPECT_NE(canvas.at(300, 200), grey);
    for (const auto& [x, y] : { std::pair(17, 33), std::pair(18, 33), std::pair(301, 203), std::pair(303, 201) }) {
        desktop.movePointer(x, y);
        desktop.finish();
        canvas.read();
        EXPECT_NE(canvas.at(x, y), grey);
        EXPECT_EQ(screen.width * screen.height - canvas.count(grey), drawn);
    }
    EXPECT_EQ(canvas.pixels(), freshlyRead());
}

TEST(ScreenReader, keepsUpWithAnythingThatWindowsDoAndLeavesThoseOutThatItShould)
{
    XServer server(screen.width, screen.height);
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
        EXPECT_EQ(difference(canvas.pixels(), freshlyRead()), "") << "seed " << seed;
    }
}

TEST(ScreenReader, leavesWindowsOutBesideACompositingManager)
{
    XServer server(screen.width, screen.height);
    TestDesktop desktop;
    const Program compositor(picom);
    waitForCompositor(desktop);
    for (unsigned seed = 1; seed <= 4; ++seed) {
        ScreenReader reader(onlyDisplay(), { leftOutProcess });
        Canvas canvas(reader);
        Storm storm(desktop, seed);
        for (int i = 0; i < 120; ++i) {
            storm.step();
            canvas.read();
        }
        storm.closeLeftOut();
        ScreenReader another(onlyDisplay(), {});
        Canvas plain(another);
        EXPECT_TRUE(canvas.readUntil([&] {
            plain.read();
            return plain.pixels() == canvas.pixels();
        })) << difference(canvas.pixels(), plain.pixels())
            << ", seed " << seed;
    }
}

TEST(ScreenReader, seesWhatIsDrawnBeneathAWindowThatIsLeftOut)
{
    XServer server(screen.width, screen.height);
    for (const bool composited : { false, true }) {
        TestDesktop desktop;
        std::optional<Program> compositor;
        if (composited) {
            compositor.emplace(std::vector<std::string>{ "picom", "--config", "/dev/null", "--backend", "xrender" });
            waitForCompositor(desktop);
        }
        const auto beneath = desktop.open({ .place = { 50, 50, 400, 300 }, .colour = blue });
        const auto above = desktop.open({ .place = { 100, 100, 200, 100 }, .colour = red, .process = leftOutProcess });
        desktop.shape(above, { { 0, 0, 150, 100 }, { 150, 20, 50, 60 } });
        desktop.movePointer(630, 470);
        desktop.finish();
        ScreenReader reader(onlyDisplay(), { leftOutProcess });
        Canvas canvas(reader);
        EXPECT_TRUE(canvas.readUntil([&] { return canvas.count(blue) == 400 * 300; })) << composited;
        EXPECT_EQ(canvas.count(red), 0);
        for (int i = 0; i < 10; ++i) {
            desktop.fill(beneath, { 60 + i, 60, 30, 30 }, green + static_cast<std::uint32_t>(i));
            EXPECT_TRUE(canvas.readUntil([&] { return canvas.count(green + static_cast<std::uint32_t>(i)) == 30 * 30; }))
                << composited;
        }
        const auto top = desktop.open({ .place = { 120, 120, 40, 40 }, .colour = yellow });
        EXPECT_TRUE(canvas.readUntil([&] { return canvas.count(yellow) == 40 * 40; })) << "a foreign window above ours is seen";
        desktop.close(top);
        EXPECT_TRUE(canvas.readUntil([&] { return canvas.count(yellow) == 0; }));
        EXPECT_EQ(canvas.count(red), 0);
    }
}

TEST(ScreenReader, neverShowsAWindowThatIsLeftOutWhileItMoves)
{
    XServer server(screen.width, screen.height);
    TestDesktop desktop;
    desktop.open({ .place = { 0, 0, 640, 300 }, .colour = blue });
    desktop.finish();
    std::atomic<bool> done = false;
    std::thread mover([&] {
        TestDesktop own;
        std::mt19937 random(3);
        auto window = own.open({ .place = { 10, 10, 150, 150 }, .colour = red, .process = leftOutProcess });
        while (!done) {
            own.place(window, { static_cast<int>(random() % 600), static_cast<int>(random() % 400), 150, 150 });
            if (random() % 8 == 0) {
                own.close(window);
                window = own.open({ .place = { 200, 200, 150, 150 }, .colour = red, .process = leftOutProcess });
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
    done = true;
    mover.join();
}

TEST(ScreenReader, leavesOutTheFramesOfAWindowManager)
{
    XServer server(screen.width, screen.height);
    TestDesktop desktop;
    const Program manager({ "openbox" });
    waitForWindowManager(desktop);
    ScreenReader reader(onlyDisplay(), { leftOutProcess });
    Canvas canvas(reader);
    desktop.movePointer(639, 479);
    desktop.finish();
    const auto empty = freshlyRead();
    const auto isFramed = [&](xcb_window_t window) {
        const auto tree = desktop.connection().receive(xcb_query_tree_reply, xcb_query_tree(desktop.connection(), window));
        return tree && tree->parent != desktop.connection().root();
    };
    const auto window =
        desktop.open({ .place = { 100, 100, 300, 200 }, .colour = red, .process = leftOutProcess, .managed = true });
    ASSERT_TRUE(canvas.readUntil([&] {
        desktop.show(window); // A window manager that has only just started may have missed it.
        return isFramed(window);
    }));
    ASSERT_TRUE(canvas.settle());
    EXPECT_NE(difference(desktop.pixels(screen), empty), "");
    EXPECT_TRUE(canvas.readUntil([&] { return canvas.pixels() == empty; })) << difference(canvas.pixels(), empty);
}

TEST(ScreenReader, leavesOutEveryWindowOfItsOwnProcessSignedOrNot)
{
    XServer server(screen.width, screen.height);
    TestDesktop desktop;
    desktop.setRootColour(blue);
    desktop.open({ .place = { 100, 100, 300, 200 }, .colour = red });
    desktop.movePointer(639, 479);
    desktop.finish();
    ScreenReader reader(onlyDisplay(), { getpid() });
    Canvas canvas(reader);
    ASSERT_TRUE(canvas.settle());
    EXPECT_EQ(canvas.count(red), 0);
    EXPECT_EQ(canvas.at(200, 200), blue);
}

TEST(ScreenReader, roundsOddDisplaysDown)
{
    XServer server(641, 479);
    TestDesktop desktop;
    desktop.open({ .place = { 0, 0, 641, 479 }, .colour = green });
    desktop.movePointer(300, 200);
    desktop.finish();
    ScreenReader reader(onlyDisplay(), {});
    EXPECT_EQ(reader.width(), 640);
    EXPECT_EQ(reader.height(), 478);
    Canvas canvas(reader);
    canvas.read();
    EXPECT_EQ(canvas.at(639, 477), green);
}

TEST(ScreenReader, readsAPartOfTheDesktop)
{
    XServer server(screen.width, screen.height);
    ASSERT_EQ(Program({ "xrandr", "--setmonitor", "SIDE", "321/100x300/100+319+90", "none" }).wait(), 0);
    const auto all = displays();
    const auto side = std::find_if(all.begin(), all.end(), [](const Display& display) { return display.name == "SIDE"; });
    ASSERT_NE(side, all.end());
    TestDesktop desktop;
    const auto window = desktop.open({ .place = { 319, 90, 321, 300 }, .colour = green });
    desktop.movePointer(10, 10);
    desktop.finish();
    ScreenReader reader(*side, {});
    Canvas canvas(reader);
    canvas.read();
    EXPECT_EQ(canvas.count(green), 320 * 300);
    desktop.fill(window, { 0, 0, 1, 1 }, red);
    desktop.movePointer(319 + 100, 90 + 100);
    EXPECT_TRUE(canvas.readUntil([&] { return canvas.at(0, 0) == red && canvas.at(100, 100) != green; }))
        << "the change and the cursor";
}

TEST(ScreenReader, endsWithTheReasonWhenItsDisplayIsGone)
{
    XServer server(screen.width, screen.height);
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
    server.kill();
    EXPECT_EQ(failureOf(reader), "The connection to the display server was lost");
}

} // namespace vantry
