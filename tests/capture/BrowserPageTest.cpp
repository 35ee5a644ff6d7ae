#include "capture/BrowserPage.h"

#include "platform/AccessibilitySwitch.h"
#include "support/Command.h"
#include "support/HoldsSoon.h"
#include "support/PumpUntil.h"
#include "support/WebBrowser.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>

namespace vantry {

namespace {

using test::holdsSoon;
using test::WebBrowser;

constexpr std::uint32_t green = 0x20C060, violet = 0x8040C0;
constexpr int tolerance = 2;

/// A screen with a window manager, on which other programs may be looked at.
class BrowserPageTest : public test::EventLoopTest {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(holdsSoon(
            [] { return test::runCommand("xprop -root _NET_SUPPORTING_WM_CHECK").find("window id") != std::string::npos; }));
    }

    /// Once the page stands where it will stay.
    PixelRect awaitPage(std::uint32_t colour)
    {
        PixelRect before;
        int same = 0;
        EXPECT_TRUE(holdsSoon([&] {
            const PixelRect now = WebBrowser::place(m_desktop, colour);
            same = !now.isEmpty() && now == before ? same + 1 : 0;
            before = now;
            return same == 20;
        }));
        return before;
    }

    std::string failureOn(const Display& display) const
    {
        try {
            browserPageCrop(display, {});
        } catch (const AppError& error) {
            return error.what();
        }
        return "found";
    }

    void expectFound(const PixelRect& page)
    {
        CropRect crop;
        ASSERT_NO_THROW(crop = browserPageCrop(m_display, {}));
        EXPECT_NEAR(crop.x * m_display.width, page.x, tolerance);
        EXPECT_NEAR(crop.y * m_display.height, page.y, tolerance);
        EXPECT_NEAR((crop.x + crop.width) * m_display.width, page.right(), tolerance);
        EXPECT_NEAR((crop.y + crop.height) * m_display.height, page.bottom(), tolerance);
    }

    const test::XServer m_screen{ 1600, 1000 };
    const test::Program m_windowManager{ { "openbox", "--sm-disable" } };
    test::TestDesktop m_desktop;
    const Display m_display = displays().at(0);
};

struct Case {
    WebBrowser::Kind kind;
    int scale;

    friend void PrintTo(const Case& one, std::ostream* out)
    {
        *out << (one.kind == WebBrowser::Kind::Chromium ? "Chromium" : "Firefox") << " at " << one.scale;
    }
};

class EveryBrowserPageTest : public BrowserPageTest, public testing::WithParamInterface<Case> { };

constexpr auto noBrowser = "No browser window on this screen. Open the page you want to record, then click again.";

} // namespace

TEST_F(BrowserPageTest, isLookedForOnlyWhenThatIsAllowed)
{
    {
        AccessibilitySwitch accessibility;
        EXPECT_THROW(browserPageCrop(m_display, {}), LookingNotAllowed);
        accessibility.switchOn();
        EXPECT_EQ(failureOn(m_display), noBrowser);
        AccessibilitySwitch another;
        another.switchOn();
    }
    EXPECT_FALSE(AccessibilitySwitch::isOn());
}

TEST_P(EveryBrowserPageTest, isFoundWithoutWhatTheBrowserAdds)
{
    AccessibilitySwitch accessibility;
    accessibility.switchOn();
    const WebBrowser browser(GetParam().kind, GetParam().scale, { .colour = green, .elements = 3000 });
    expectFound(awaitPage(green));
    EXPECT_EQ(failureOn({ .x = 1600, .width = 1600, .height = 1000 }), noBrowser);
}

INSTANTIATE_TEST_SUITE_P(, EveryBrowserPageTest,
    testing::Values(Case{ WebBrowser::Kind::Chromium, 1 }, Case{ WebBrowser::Kind::Chromium, 2 },
        Case{ WebBrowser::Kind::Firefox, 1 }, Case{ WebBrowser::Kind::Firefox, 2 }));

TEST_F(BrowserPageTest, isThatOfTheWindowInFront)
{
    AccessibilitySwitch accessibility;
    accessibility.switchOn();
    const WebBrowser below(WebBrowser::Kind::Firefox, 1, { .colour = green });
    awaitPage(green);
    const WebBrowser above(WebBrowser::Kind::Chromium, 1, { .colour = violet });
    expectFound(awaitPage(violet));
}

TEST_F(BrowserPageTest, tellsOfABrowserThatWasStartedBefore)
{
    const WebBrowser browser(WebBrowser::Kind::Chromium, 1, { .colour = green });
    awaitPage(green);
    AccessibilitySwitch accessibility;
    accessibility.switchOn();
    EXPECT_NE(failureOn(m_display).find("then click again"), std::string::npos);
    EXPECT_NE(failureOn(m_display), noBrowser);
}

} // namespace vantry
