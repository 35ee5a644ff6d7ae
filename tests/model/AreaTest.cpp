#include "model/AreaSelection.h"
#include "model/ModelTest.h"
#include "model/RecentAreas.h"
#include "model/ScreenAreas.h"
#include "model/ScreenPreview.h"
#include "platform/TopPanel.h"
#include "support/TestDesktop.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <random>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

CropRect cropIn(const AreaSelection& selection)
{
    return cropOf(selection.crop()).value_or(CropRect());
}

void expectNear(const CropRect& a, const CropRect& b)
{
    EXPECT_NEAR(a.x, b.x, 1e-9);
    EXPECT_NEAR(a.y, b.y, 1e-9);
    EXPECT_NEAR(a.width, b.width, 1e-9);
    EXPECT_NEAR(a.height, b.height, 1e-9);
}

} // namespace

TEST(AreaTest, isNamedByWhatItLeavesOut)
{
    EXPECT_EQ(areaName(std::nullopt), "Full screen"_L1);
    EXPECT_EQ(areaName(withoutMenuBar(0.03)), "Without menu bar"_L1);
    EXPECT_EQ(areaName(CropRect{ 0, 0.031, 1, 0.97 }), "Without menu bar"_L1);
    EXPECT_EQ(areaName(CropRect{ 0, 0.032, 1, 0.97 }), "Custom area"_L1);
    EXPECT_EQ(areaName(CropRect{ 0.002, 0.03, 0.998, 0.97 }), "Custom area"_L1);
}

TEST(AreaTest, isSpannedByTwoPointsInWhateverOrder)
{
    const QSizeF view(400, 200);
    expectNear(normalized({ 300, 150 }, { 100, 50 }, view), { 0.25, 0.25, 0.5, 0.5 });
    EXPECT_EQ(normalized({ 300, 150 }, { 100, 50 }, view), normalized({ 100, 50 }, { 300, 150 }, view));
    expectNear(normalized({ 300, 150 }, { 900, -50 }, view), { 0.75, 0, 0.25, 0.75 });
}

class AreaSelectionTest : public testing::Test {
protected:
    AreaSelectionTest() { m_selection.setPixelSize({ 1920, 1080 }); }

    AreaSelection m_selection;
    const QSizeF m_view{ 960, 540 };
};

TEST_F(AreaSelectionTest, showsADragAndTakesItOverAtItsEnd)
{
    int edits = 0;
    QObject::connect(&m_selection, &AreaSelection::edited, &m_selection, [&] { ++edits; });
    m_selection.draw({ 100, 100 }, { 420.3, 280.2 }, m_view);
    EXPECT_TRUE(m_selection.isDragging());
    EXPECT_EQ(edits, 0);
    m_selection.endDrag();
    EXPECT_EQ(edits, 1);
    EXPECT_EQ(m_selection.readout(), QString::fromUtf8("640 × 360 px"));
    expectNear(cropIn(m_selection), { 200 / 1920.0, 200 / 1080.0, 640 / 1920.0, 360 / 1080.0 });

    m_selection.draw({ 100, 100 }, { 100 + 0.04 * m_view.width(), 400 }, m_view);
    m_selection.endDrag();
    EXPECT_EQ(m_selection.readout(), QString::fromUtf8("640 × 360 px"));
    EXPECT_EQ(edits, 1);
}

TEST_F(AreaSelectionTest, isChangedByItsHandlesAndByKeys)
{
    m_selection.choose(QRectF(0.25, 0.25, 0.5, 0.5)); // 480, 270, 960 × 540
    m_selection.drag(AreaSelection::LeftEdge | AreaSelection::TopEdge, { 10, 5 }, m_view);
    m_selection.endDrag();
    expectNear(cropIn(m_selection), { 500 / 1920.0, 280 / 1080.0, 940 / 1920.0, 530 / 1080.0 });
    m_selection.drag(AreaSelection::NoEdge, { 9999, 9999 }, m_view);
    m_selection.endDrag();
    expectNear(cropIn(m_selection), { 980 / 1920.0, 550 / 1080.0, 940 / 1920.0, 530 / 1080.0 });
    EXPECT_TRUE(m_selection.pressKey(Qt::Key_Left, Qt::ShiftModifier));
    EXPECT_TRUE(m_selection.pressKey(Qt::Key_Down, Qt::NoModifier));
    EXPECT_TRUE(m_selection.pressKey(Qt::Key_Left, Qt::AltModifier));
    EXPECT_TRUE(m_selection.pressKey(Qt::Key_Up, Qt::AltModifier | Qt::ShiftModifier));
    EXPECT_FALSE(m_selection.pressKey(Qt::Key_Return, Qt::NoModifier));
    expectNear(cropIn(m_selection), { 970 / 1920.0, 550 / 1080.0, 938 / 1920.0, 520 / 1080.0 });
    m_selection.setPixelWidth(1281);
    m_selection.setPixelHeight(720);
    EXPECT_EQ(m_selection.readout(), QString::fromUtf8("1280 × 720 px"));
    m_selection.setPixelWidth(99999);
    m_selection.setPixelHeight(99999);
    EXPECT_TRUE(m_selection.isWhole());
    EXPECT_EQ(m_selection.readout(), QString::fromUtf8("1920 × 1080 px"));
}

/// Whatever is done on screens of whatever size, the area stays on the screen, even, large enough to be seen, and wide where asked.
TEST(AreaPixelsTest, keepTheirPromisesWhateverIsDone)
{
    std::mt19937 random(1);
    const auto any = [&](int from, int to) { return std::uniform_int_distribution(from, to)(random); };
    for (int i = 0; i < 20000; ++i) {
        const AreaPixels pixels(any(320, 4000), any(200, 2400));
        PixelRect area = pixels.snapped({ any(0, 99) / 100.0, any(0, 99) / 100.0, any(1, 100) / 100.0, any(1, 100) / 100.0 });
        const auto shape = any(0, 1) ? AreaShape::Wide : AreaShape::Free;
        const AreaEdges edges{ .left = any(0, 1) == 1, .top = any(0, 1) == 1, .right = any(0, 1) == 1, .bottom = any(0, 1) == 1 };
        const int what = any(0, 2);
        if (what == 0)
            area = pixels.moved(area, any(-5000, 5000), any(-5000, 5000));
        else if (what == 1)
            area = pixels.resized(area, edges, any(-3000, 3000), any(-3000, 3000), shape);
        else
            area = pixels.sized(area, any(-100, 5000), any(-100, 5000));
        EXPECT_TRUE((PixelRect{ 0, 0, pixels.width(), pixels.height() }.contains(area)));
        EXPECT_TRUE(area.width % 2 == 0 && area.height % 2 == 0 && area.width > 0 && area.height > 0);
        const bool isWide = std::abs(area.height - area.width * 9.0 / 16) <= 2;
        EXPECT_TRUE(isWide || what != 1 || shape == AreaShape::Free) << area.width << " × " << area.height;
        EXPECT_EQ(pixels.snapped(pixels.fractions(area)), area);
        if (testing::Test::HasFailure())
            return;
    }
}

/// On a screen without anything but what the test puts there.
class ScreenPreviewTest : public test::EventLoopTest {
protected:
    const test::XServer m_screen{ 1000, 500 };
    test::TestDesktop m_desktop;
};

TEST_F(ScreenPreviewTest, showsTheScreenWithoutThePointerAndOurselves)
{
    constexpr std::uint32_t grey = 0x405060, green = 0x00FF00;
    m_desktop.setRootColour(grey);
    m_desktop.open({ .place = { 600, 100, 200, 200 }, .colour = green });
    m_desktop.movePointer(100, 100);
    m_desktop.finish();
    ScreenPreview preview;
    auto taking = preview.capture(displays().at(0));
    ASSERT_TRUE(test::pumpUntil([&] { return preview.hasImage(); }));
    const QImage& image = preview.image();
    EXPECT_EQ(image.size(), QSize(1280, 640));
    EXPECT_EQ(preview.pixelSize(), QSize(1000, 500));
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            ASSERT_EQ(image.pixel(x, y) & 0xFFFFFF, grey) << x << ' ' << y;
}

TEST_F(ScreenPreviewTest, knowsThePanelAtTheTop)
{
    const Display display = displays().at(0);
    EXPECT_EQ(menuBarFraction(std::nullopt), 0.03);
    EXPECT_EQ(topPanelHeight(display), 0);
    const auto& server = m_desktop.connection();
    const auto panel = m_desktop.open({ .place = { 0, 0, 1000, 15 } });
    const std::uint32_t strut[12]{ 0, 0, 15, 0, 0, 0, 0, 0, 0, 999, 0, 0 };
    xcb_change_property(
        server, XCB_PROP_MODE_REPLACE, panel, server.atom("_NET_WM_STRUT_PARTIAL"), XCB_ATOM_CARDINAL, 32, 12, strut);
    xcb_change_property(
        server, XCB_PROP_MODE_REPLACE, server.root(), server.atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 32, 1, &panel);
    m_desktop.finish();
    EXPECT_DOUBLE_EQ(menuBarFraction(display), 0.03);
    EXPECT_EQ(topPanelHeight({ .x = 1000, .width = 500, .height = 500 }), 0);
    EXPECT_EQ(topPanelHeight({ .y = 500, .width = 1000, .height = 500 }), 0);
}

TEST(RecentAreasTest, areOfferedForTheirScreenAndToldWhenItHasAnotherSize)
{
    const test::TemporaryFolder folder;
    Display display{ .id = 7, .width = 1920, .height = 1080 };
    const auto choose = [&](Settings& settings, double x) {
        RecentAreas areas(settings, [&] { return display; });
        areas.remember(cropValue(CropRect{ x, 0.25, 0.5, 0.5 }));
    };
    {
        Settings settings(folder / "settings.ini");
        for (const double x : { 0.1, 0.2, 0.3, 0.4, 0.2 })
            choose(settings, x);
    }
    Settings settings(folder / "settings.ini");
    RecentAreas areas(settings, [&] { return display; });
    areas.remember({});
    areas.refresh();
    ASSERT_EQ(areas.areas().size(), 3);
    const QVariantMap newest = areas.areas().constFirst().toMap();
    EXPECT_EQ(newest[u"text"_s].toString(), u"960 × 540 px"_s);
    EXPECT_EQ(newest[u"crop"_s].toRectF().x(), 0.2);
    EXPECT_EQ(areas.sizeNote(newest[u"crop"_s]), QString());
    display.height = 1200;
    EXPECT_EQ(areas.sizeNote(newest[u"crop"_s]),
        u"The screen had 1920 × 1080 px when this area was chosen. The area keeps its place and has 960 × 600 px now."_s);
    display.id = 8;
    areas.refresh();
    EXPECT_TRUE(areas.areas().isEmpty());
}

} // namespace vantry
