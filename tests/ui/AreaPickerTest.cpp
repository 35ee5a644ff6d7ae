#include "ui/WindowTest.h"

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <vector>

namespace vantry {

namespace {

using test::holdsSoon;
using test::runCommand;

/// The sheet alone, on a screen of one colour with a window manager.
class AreaPickerTest : public testing::Test {
protected:
    AreaPickerTest()
    {
        m_desktop.setRootColour(background);
        m_desktop.finish();
    }

    void SetUp() override
    {
        ASSERT_TRUE(
            holdsSoon([] { return runCommand("xprop -root _NET_SUPPORTING_WM_CHECK").find("window id") != std::string::npos; }));
        m_program = std::make_unique<test::Program>(std::vector<std::string>{ "sh", "-c",
            "exec env HOME='" + m_home.path().string() + "' PIPEWIRE_REMOTE=none QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=software "
                + AREA_PAGE + " '" + (m_home / "settings.ini").string() + "' 1024 640 >'" + (m_home / "log").string() + "'" });
        ASSERT_TRUE(holdsSoon([&] { return findPicture(); }));
        runCommand("xdotool search --sync --onlyvisible --name 'Area page' windowactivate --sync");
    }

    /// Where on the screen its picture is shown.
    bool findPicture()
    {
        const auto pixels = m_desktop.pixels({ 0, 0, 1280, 720 });
        const std::string text = runCommand("xdotool search --onlyvisible --name 'Area page' getwindowgeometry --shell || true");
        PixelRect window;
        if (std::sscanf(
                text.c_str(), "WINDOW=%*d\nX=%d\nY=%d\nWIDTH=%d\nHEIGHT=%d", &window.x, &window.y, &window.width, &window.height)
            != 4)
            return false;
        int left = 1280, top = 720, right = 0, bottom = 0;
        for (int y = window.y; y < std::min(window.bottom(), 720); ++y)
            for (int x = window.x; x < std::min(window.right(), 1280); ++x)
                if (pixels[static_cast<std::size_t>(y * 1280 + x)] == background) {
                    left = std::min(left, x);
                    right = std::max(right, x + 1);
                    top = std::min(top, y);
                    bottom = std::max(bottom, y + 1);
                }
        const PixelRect before = m_picture;
        m_picture = { left, top, right - left, bottom - top };
        return right > left && m_picture == before;
    }

    std::string at(double x, double y) const
    {
        return std::to_string(std::lround(m_picture.x + x * m_picture.width)) + " "
            + std::to_string(std::lround(m_picture.y + y * m_picture.height));
    }

    void drag(double fromX, double fromY, double toX, double toY) const
    {
        runCommand("xdotool mousemove " + at(fromX, fromY) + " mousedown 1 mousemove " + at((fromX + toX) / 2, (fromY + toY) / 2)
            + " mousemove " + at(toX, toY) + " mouseup 1");
    }

    /// The crop that was chosen last, in pixels of the screen, is this one, give or take what a pixel of the picture makes.
    bool isChosen(const PixelRect& wanted, int tolerance = 3) const
    {
        std::ifstream log(m_home / "log");
        std::string last;
        for (std::string line; std::getline(log, line);)
            last = line;
        double x = 0, y = 0, width = 0, height = 0;
        if (std::sscanf(last.c_str(), "%lf %lf %lf %lf", &x, &y, &width, &height) != 4)
            return false;
        const auto isNear = [&](double a, int b) { return std::abs(a - b) <= tolerance; };
        return isNear(x * 1280, wanted.x) && isNear(y * 720, wanted.y) && isNear(width * 1280, wanted.width)
            && isNear(height * 720, wanted.height);
    }

    static constexpr std::uint32_t background = 0x3C7850;

    const test::TemporaryFolder m_home;
    const test::XServer m_screen{ 1280, 720 };
    const test::Program m_windowManager{ { "openbox", "--sm-disable" } };
    test::TestDesktop m_desktop;
    std::unique_ptr<test::Program> m_program;
    PixelRect m_picture;
};

} // namespace

TEST_F(AreaPickerTest, choosesByDraggingByHandlesAndByKeys)
{
    drag(0.75, 0.75, 0.25, 0.25);
    EXPECT_TRUE(holdsSoon([&] { return isChosen({ 320, 180, 640, 360 }); }));
    drag(0.75, 0.5, 0.875, 0.5); // the right handle
    EXPECT_TRUE(holdsSoon([&] { return isChosen({ 320, 180, 800, 360 }); }));
    drag(0.5625, 0.5, 0.5, 0.625); // the one in the middle
    EXPECT_TRUE(holdsSoon([&] { return isChosen({ 240, 270, 800, 360 }); }));
    runCommand("xdotool key --repeat 4 shift+Left key alt+shift+Up");
    EXPECT_TRUE(holdsSoon([&] { return isChosen({ 200, 270, 800, 350 }); }));
    runCommand("xdotool key Return");
    EXPECT_EQ(m_program->wait(), 0); // Done
}

} // namespace vantry
