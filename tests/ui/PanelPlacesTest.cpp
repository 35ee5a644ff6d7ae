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

} // namespace vantry
