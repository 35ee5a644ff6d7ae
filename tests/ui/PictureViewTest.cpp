#include "support/Command.h"
#include "support/HoldsSoon.h"
#include "support/TestDesktop.h"
#include "support/XServer.h"
#include "ui/TestPictures.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace vantry {

namespace {

constexpr std::uint32_t magenta = 0xFF00FF;

/// What a window shows that is drawn by each of the backends.
class PictureViewTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override { setenv("QT_QUICK_BACKEND", isSoftware() ? "software" : "", 1); }
    void TearDown() override { unsetenv("QT_QUICK_BACKEND"); }

    static bool isSoftware() { return GetParam() == std::string("Software"); }

    /// Opens the window. Skips the test where nothing can draw it this way.
    void open(const std::string& picture, int width, int height)
    {
        m_width = width;
        m_height = height;
        m_program = std::make_unique<test::Program>(
            std::vector<std::string>{ PICTURE_WINDOW, "-platform", "xcb", picture, std::to_string(width), std::to_string(height) });
        ASSERT_TRUE(test::holdsSoon([] { return isOpen("OpenGL") || isOpen("Software"); }));
        if (!isOpen(GetParam()))
            GTEST_SKIP() << "There is no " << GetParam();
        m_pixels = m_desktop.pixels({ 0, 0, width, height });
    }

    static bool isOpen(const std::string& title)
    {
        return !test::runCommand("xdotool search --onlyvisible --name '^" + title + "$' || true").empty();
    }

    std::uint32_t pixel(int x, int y) const { return m_pixels.at(static_cast<std::size_t>(y * m_width + x)); }
    QColor colour(int x, int y) const { return QColor::fromRgb(pixel(x, y)); }

    const test::XServer m_screen{ 1280, 720 };
    test::TestDesktop m_desktop;
    std::unique_ptr<test::Program> m_program;
    int m_width = 0;
    int m_height = 0;
    std::vector<std::uint32_t> m_pixels;
};

int difference(QColor one, QColor other)
{
    return std::max(
        { std::abs(one.red() - other.red()), std::abs(one.green() - other.green()), std::abs(one.blue() - other.blue()) });
}

} // namespace

TEST_P(PictureViewTest, showsEveryPixelInItsPlaceAndColour)
{
    open("noise", 640, 420);
    const Picture picture = test::colouredNoise(640, 360);
    int worst = 0;
    for (int y = 0; y < 360; ++y)
        for (int x = 0; x < 640; ++x)
            if (test::isInsideBlock(x, y))
                worst = std::max(worst, difference(colour(x, y + 30), test::colourAt(picture, x, y)));
    EXPECT_LE(worst, 1);
    for (const int y : { 0, 29, 390, 419 })
        for (const int x : { 0, 320, 639 })
            EXPECT_EQ(pixel(x, y), magenta) << "nothing is drawn beside the picture";
}

TEST_P(PictureViewTest, showsAllOfTheSamplesOfASmallerPicture)
{
    open("chequers", 400, 180);
    const Picture picture = test::chequers(640, 360, 8);
    int worst = 0;
    for (int y = 0; y < 180; ++y)
        for (int x = 0; x < 320; ++x)
            worst = std::max(worst, difference(colour(x + 40, y), test::colourAt(picture, 2 * x, 2 * y)));
    EXPECT_LE(worst, 70) << "half a pixel beside its place, an edge would be off by 128";
    EXPECT_EQ(pixel(39, 90), magenta);
    EXPECT_EQ(pixel(360, 90), magenta);
}

INSTANTIATE_TEST_SUITE_P(WithEach, PictureViewTest, testing::Values("OpenGL", "Software"),
    [](const auto& backend) { return std::string(backend.param); });

} // namespace vantry
