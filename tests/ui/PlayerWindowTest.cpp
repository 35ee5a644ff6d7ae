#include "support/TestProject.h"
#include "ui/WindowTest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

using test::holdsSoon;
using test::runCommand;

namespace {

constexpr int screenWidth = 1400, screenHeight = 900;
constexpr double lengthOfClip = 4;
constexpr int clips = 4; ///< Playback does not end before a busy machine has looked.
constexpr std::uint32_t background = 0x301F11, bar = 0x655445; ///< Of the project's picture.
constexpr std::uint32_t ink = 0xF2F5FA; ///< Of the scrubber's handle.

bool isAbout(std::uint32_t colour, std::uint32_t other)
{
    for (const int shift : { 0, 8, 16 })
        if (std::abs(int(colour >> shift & 0xFF) - int(other >> shift & 0xFF)) > 14)
            return false;
    return true;
}

bool isPicture(std::uint32_t colour)
{
    return isAbout(colour, background) || isAbout(colour, bar);
}

struct Point {
    int x;
    int y;
};

/// The window of a project, used with mouse and keyboard.
class PlayerWindowTest : public test::WindowTest {
protected:
    PlayerWindowTest()
        : WindowTest(screenWidth, screenHeight)
    {
    }

    void SetUp() override
    {
        WindowTest::SetUp();
        test::writeTestProject(m_home / "project", lengthOfClip, clips);
        start("--open '" + (m_home / "project").string() + "'");
        ASSERT_TRUE(showsSoon(0));
        look();
    }

    std::vector<std::uint32_t> rowOfPicture()
    {
        const auto window = placeOf("^Vantry$");
        return m_desktop.pixels({ 0, window.y + window.height / 2, screenWidth, 1 });
    }

    /// The frame that is seen, -1 for none.
    int frame()
    {
        const auto row = rowOfPicture();
        const auto left = std::ranges::find_if(row, isPicture);
        const auto right = std::find_if(row.rbegin(), row.rend(), isPicture).base();
        const auto edge = std::ranges::find_if(row, [](std::uint32_t colour) { return isAbout(colour, bar); });
        if (edge == row.end())
            return -1;
        return static_cast<int>(std::lround(double(edge - left) / double(right - left) / test::barPlace(1)));
    }

    bool showsSoon(int wanted, int tolerance = 0)
    {
        return holdsSoon([&] { return std::abs(frame() - wanted) <= tolerance; });
    }

    bool playsSoon()
    {
        const int before = frame();
        return holdsSoon([&] { return frame() != before; });
    }

    /// Finds the controls, which lie below the picture, by the two ends of the scrubber.
    void look()
    {
        const auto row = rowOfPicture();
        const int left = static_cast<int>(std::ranges::find_if(row, isPicture) - row.begin());
        const int right = static_cast<int>(row.rend() - std::find_if(row.rbegin(), row.rend(), isPicture));
        const auto column = m_desktop.pixels({ (left + right) / 2, 0, 1, screenHeight });
        const int bottom = static_cast<int>(column.rend() - std::find_if(column.rbegin(), column.rend(), isPicture));
        m_controls = { left, bottom + 4, right - left, 40 };
        ASSERT_TRUE(holdsSoon([&] { return handle().has_value(); }));
        m_first = *handle();
        press("End");
        ASSERT_TRUE(showsSoon(119));
        ASSERT_TRUE(holdsSoon([&] { return handle() && handle()->x > m_first.x + 100; }));
        m_last = *handle();
        press("Home");
        ASSERT_TRUE(showsSoon(0));
    }

    /// The middle of the scrubber's handle.
    std::optional<Point> handle()
    {
        const auto pixels = m_desktop.pixels(m_controls);
        long x = 0, y = 0, count = 0;
        for (int i = 0; i < std::ssize(pixels); ++i) {
            if (pixels[i] != ink)
                continue;
            x += i % m_controls.width;
            y += i / m_controls.width;
            ++count;
        }
        if (!count)
            return std::nullopt;
        return Point{ static_cast<int>(m_controls.x + x / count), static_cast<int>(m_controls.y + y / count) };
    }

    Point scrubberAt(double seconds) const
    {
        return { static_cast<int>(std::lround(m_first.x + seconds / (clips * lengthOfClip) * (m_last.x - m_first.x))), m_first.y };
    }

    /// What the program holds, in MB.
    long memory() const
    {
        const auto status = "/proc/" + std::to_string(m_program->pid()) + "/status";
        return std::stol(runCommand("sed -n 's/^RssAnon:[^0-9]*\\([0-9]*\\) kB/\\1/p' " + status)) / 1000;
    }

    static void press(const std::string& keys) { runCommand("xdotool key " + keys); }
    static std::string moveTo(Point place) { return " mousemove " + std::to_string(place.x) + " " + std::to_string(place.y) + " "; }

    PixelRect m_controls{};
    Point m_first{}, m_last{};
};

} // namespace

TEST_F(PlayerWindowTest, picturesThatWereShownAreGone)
{
    press("End");
    ASSERT_TRUE(showsSoon(119));
    press("space"); // From the beginning.
    ASSERT_TRUE(showsSoon(30, 15));
    const auto before = memory();
    ASSERT_TRUE(showsSoon(100, 15));
    EXPECT_LE(memory() - before, 60) << "these are some 200 MB of pictures";
}

TEST_F(PlayerWindowTest, isDrivenByKeys)
{
    const auto button = [this] { return m_desktop.pixels({ m_controls.x + 8, m_first.y - 8, 16, 16 }); };
    const auto play = button();
    press("Right Right Right");
    EXPECT_TRUE(showsSoon(3));
    press("Left");
    EXPECT_TRUE(showsSoon(2));
    press("space");
    EXPECT_TRUE(playsSoon());
    press("space");
    press("End");
    EXPECT_TRUE(showsSoon(119));
    press("Left");
    EXPECT_TRUE(showsSoon(118));
    press("space");
    EXPECT_TRUE(showsSoon(119)) << "it plays to the end";
    EXPECT_TRUE(holdsSoon([&] { return button() == play; })) << "and stops there";

    // Wherever the focus is, as long as that makes no use of them itself.
    press("Tab Home");
    EXPECT_TRUE(showsSoon(0));
    press("Right");
    EXPECT_TRUE(showsSoon(1)) << "not by the scrubber's own steps";
    press("Tab Tab Right");
    EXPECT_TRUE(showsSoon(2));
}

TEST_F(PlayerWindowTest, isDrivenByTheMouse)
{
    runCommand("xdotool" + moveTo(scrubberAt(1)) + "click 1");
    EXPECT_TRUE(showsSoon(30, 1));
    runCommand("xdotool" + moveTo(scrubberAt(1)) + "mousedown 1" + moveTo(scrubberAt(2)) + moveTo(scrubberAt(3)));
    EXPECT_TRUE(showsSoon(90, 1)) << "while it is dragged";
    runCommand("xdotool" + moveTo({ screenWidth - 1, 10 }));
    EXPECT_TRUE(showsSoon(119));
    runCommand("xdotool" + moveTo(scrubberAt(0.5)) + "mouseup 1");
    EXPECT_TRUE(showsSoon(15, 1));

    const Point button{ m_controls.x + 16, m_first.y };
    runCommand("xdotool" + moveTo(button) + "click 1");
    EXPECT_TRUE(playsSoon());
    runCommand("xdotool" + moveTo(scrubberAt(1)) + "mousedown 1");
    EXPECT_TRUE(showsSoon(30, 1)) << "it does not run away";
    runCommand("xdotool mouseup 1");
    EXPECT_TRUE(playsSoon()) << "it plays on";
}

} // namespace vantry
