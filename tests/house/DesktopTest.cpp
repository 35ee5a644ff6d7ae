// The private desktop itself: run by `./dev test`, this looks at the one around it. What its devices and its key ring do is seen by
// the tests that use them.

#include "support/Command.h"

#include <gmock/gmock.h>

namespace vantry {

TEST(Desktop, hasAScreenAWindowManagerAndAPlaceOfItsOwn)
{
    EXPECT_THAT(test::runCommand("xdpyinfo"), testing::HasSubstr("1920x1080 pixels"));
    EXPECT_THAT(test::runCommand("xprop -root _NET_SUPPORTING_WM_CHECK"), testing::HasSubstr("window id"));
    EXPECT_THAT(std::string(getenv("HOME")), testing::StartsWith(getenv("VANTRY_SESSION")));
}

} // namespace vantry
