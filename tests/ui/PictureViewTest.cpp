#include "support/Command.h"
#include "support/HoldsSoon.h"
#include "support/TestDesktop.h"
#include "support/XServer.h"
#include "ui/TestPictures.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace vantry {

namespace {

const QColor magenta(0xFF00FF);

/// What a window shows that is drawn by each of the backends.
class PictureViewTest : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override { setenv("QT_QUICK_BACKEND", isSoftware() ? "software" : "", 1); }
    void TearDown() override { unsetenv("QT_QUICK_BACKEND"); }

    static bool isSoftware() { return GetParam() == std::string("Software"); }

    /// Opens the window. Skips the test where nothing can draw it this way.
    void open(int width, int height)
    {
        m_width = width;
        m_program = std::make_unique<test::Program>(
            std::vector<std::string>{ PICTURE_WINDOW, "-platform", "xcb", std::to_string(width), std::to_string(height) });
        ASSERT_TRUE(test::holdsSoon([] { return isOpen("OpenGL") || isOpen("Software"); }));
        if (!isOpen(GetParam()))
            GTEST_SKIP() << "There is no " << GetParam();
        m_pixels = m_desktop.pixels({ 0, 0, width, height });
    }

    static bool isOpen(const std::string& title)
    {
        return !test::runCommand("xdotool search --onlyvisible --name '^" + title + "$' || true").empty();
    }

    QColor colour(int x, int y) const { return QColor::fromRgb(m_pixels.at(static_cast<std::size_t>(y * m_width + x))); }

    const test::XServer m_screen{ 1280, 720 };
    test::TestDesktop m_desktop;
    std::unique_ptr<test::Program> m_program;
    int m_width = 0;
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
    open(640, 420);
    const Picture picture = test::colouredNoise(640, 360);
    int worst = 0;
    for (int y = 0; y < 360; ++y)
        for (int x = 0; x < 640; ++x)
            if (test::isInsideBlock(x, y))
                worst = std::max(worst, difference(colour(x, y + 30), test::colourAt(picture, x, y)));
    EXPECT_LE(worst, 1);
    for (const int y : { 0, 29, 390, 419 })
        EXPECT_EQ(colour(320, y), magenta) << "nothing is drawn beside the picture";
}

TEST_P(PictureViewTest, showsAllOfTheSamplesOfASmallerPicture)
{
    open(240, 90);
    const Picture picture = test::colouredNoise(640, 360);
    double error = 0;
    for (int y = 0; y < 90; ++y)
        for (int x = 0; x < 160; ++x) {
            double mean = 0;
            for (int i = 0; i < 16; ++i)
                mean += qGray(test::colourAt(picture, 4 * x + i % 4, 4 * y + i / 4).rgb()) / 16.0;
            error += std::abs(qGray(colour(x + 40, y).rgb()) - mean);
        }
    EXPECT_LT(error / (160 * 90), 9) << "half a pixel beside its place it is off by 11, and by 21 if only some samples are seen";
    EXPECT_EQ(colour(39, 45), magenta);
    EXPECT_EQ(colour(200, 45), magenta);
}

INSTANTIATE_TEST_SUITE_P(WithEach, PictureViewTest, testing::Values("OpenGL", "Software"),
    [](const auto& backend) { return std::string(backend.param); });

} // namespace vantry
