#include "ui/PanelPlaces.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(PanelPlaces, theControlsAreAtTheTopOfWhatIsFree)
{
    EXPECT_EQ(hudPlace({ 0, 24, 1920, 1056 }), QRect(580, 36, 760, 64));
    EXPECT_EQ(hudPlace({ 1920, 0, 1280, 1024 }), QRect(2180, 12, 760, 64)) << "on the second screen";
}

TEST(PanelPlaces, theBubbleIsInItsCornerOfTheWholeScreen)
{
    const QRect screen(100, 200, 1600, 1000);
    EXPECT_EQ(bubblePlace(screen, Layout::bubble, Corner::topLeft, 0.26), QRect(140, 240, 260, 260));
    EXPECT_EQ(bubblePlace(screen, Layout::bubble, Corner::topRight, 0.26), QRect(1400, 240, 260, 260));
    EXPECT_EQ(bubblePlace(screen, Layout::bubble, Corner::bottomRight, 0.2), QRect(1460, 960, 200, 200));
    EXPECT_EQ(bubblePlace(screen, Layout::camera, Corner::bottomLeft, 0.2), QRect(140, 880, 280, 280)) << "a larger mirror";
}

} // namespace vantry
