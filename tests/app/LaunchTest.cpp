#include "app/Launch.h"

#include "model/ModelTest.h"
#include "platform/Xcb.h"
#include "support/Command.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

namespace vantry {

using test::pumpUntil;

class LaunchTest : public test::ModelTest {
protected:
    /// Whether another program gets Control, Alt and R.
    bool takeKey()
    {
        constexpr xcb_keycode_t keyR = 27;
        return !m_other.check(xcb_grab_key_checked(
            m_other, 0, m_other.root(), XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1, keyR, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }

    const test::XServer m_screen{ 320, 240 };
    const xcb::Connection m_other;
};

TEST_F(LaunchTest, takesTheHotKeysAndSaysWhichItDidNotGet)
{
    ASSERT_TRUE(takeKey());
    Launch launch(m_model, {});
    launch.start();
    EXPECT_TRUE(pumpUntil([&] { return m_model.status() == QStringLiteral("⌃⌥R is used by another program"); }));
    EXPECT_EQ(m_model.settings()->setupLayout(), Layout::camera);
    test::runCommand("xdotool key ctrl+alt+3");
    EXPECT_TRUE(pumpUntil([&] { return m_model.settings()->setupLayout() == Layout::screen; }));
}

TEST_F(LaunchTest, leavesTheKeysAloneWhereItOnlyOpensARecording)
{
    Launch launch(m_model, { .open = writeProject("one") });
    launch.start();
    ASSERT_TRUE(pumpUntil([&] { return m_model.phase() == Phase::editing(); }));
    EXPECT_TRUE(takeKey());
    EXPECT_EQ(m_model.status(), std::nullopt);
}

} // namespace vantry
