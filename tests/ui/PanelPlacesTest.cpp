#include "ui/PanelPlaces.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(PanelPlaces, theBubbleIsInItsCornerOfTheWholeScreen)
{
    const QRect second(100, 200, 1600, 1000);
    EXPECT_EQ(bubblePlace(second, Layout::bubble, Corner::topLeft, 0.26), QRect(140, 240, 260, 260));
    EXPECT_EQ(bubblePlace(second, Layout::bubble, Corner::bottomRight, 0.2), QRect(1460, 960, 200, 200));
    EXPECT_EQ(bubblePlace(second, Layout::camera, Corner::bottomLeft, 0.2), QRect(140, 880, 280, 280)) << "a larger mirror";
}

TEST(PanelPlaces, theControlsKeepTheirRightCornerAndStayOnTheScreen)
{
    const QRect area(1920, 30, 1280, 690);
    const QSize panel = hudSize(area, false), pill = hudSize(area, true);
    EXPECT_EQ(hudPlace(area, panel, std::nullopt), QRect(2180, 42, 760, 64));
    const QRect folded = hudPlace(area, pill, std::nullopt);
    EXPECT_EQ(folded.right(), hudPlace(area, panel, std::nullopt).right());
    EXPECT_EQ(hudPlace(area, pill, hudCorner(area, folded.translated(-50, 400))), folded.translated(-50, 400));
    EXPECT_EQ(hudPlace(area, panel, QPoint(200, 5000)).bottomLeft(), area.bottomLeft()) << "the screen was larger";
    EXPECT_EQ(hudSize(QRect(0, 0, 640, 400), false), QSize(616, 64));
}

TEST(PanelPlaces, whatBelongsToAPlaceIsBelowItOrAbove)
{
    const QRect area(0, 0, 1000, 500);
    EXPECT_EQ(besidePlace(area, QRect(100, 100, 50, 30), QSize(200, 80)), QRect(100, 136, 200, 80));
    EXPECT_EQ(besidePlace(area, QRect(900, 400, 50, 30), QSize(200, 80)), QRect(800, 314, 200, 80));
}

} // namespace vantry
