#include "project/Project.h"

#include <gmock/gmock.h>

namespace vantry {

using testing::HasSubstr;

TEST(Overlay, aNewOneIsItsOwnHasTheLookOfItsKindAndItsTextEscaped)
{
    const auto bubble = Overlay::make(OverlayKind::bubble, "A < B & \"C\"", 12.5);
    EXPECT_EQ(bubble.start, 12.5);
    EXPECT_EQ(bubble.text, "A < B & \"C\"");
    EXPECT_THAT(bubble.html, HasSubstr(R"(>A &lt; B &amp; "C"<)"));
    EXPECT_THAT(bubble.html, HasSubstr("border-top:")) << "a tail";
    EXPECT_THAT(Overlay::make(OverlayKind::text, "a>b", 0).html, HasSubstr(">a&gt;b<"));
    const auto lowerThird = Overlay::make(OverlayKind::lowerThird, "a", 0);
    EXPECT_GT(lowerThird.y, 0.8);
    EXPECT_THAT(lowerThird.html, HasSubstr("border-left:"));
    EXPECT_NE(lowerThird.id, Overlay::make(OverlayKind::lowerThird, "a", 0).id);
}

} // namespace vantry
