#include "capture/HotKeys.h"

#include "platform/Xcb.h"
#include "support/Command.h"
#include "support/PumpUntil.h"
#include "support/XServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <vector>

namespace vantry {

namespace {

using test::pumpUntil;
using test::runCommand;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint16_t controlAlt = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
constexpr xcb_keycode_t keyR = 27, keyX = 53, keyB = 56;

class HotKeysTest : public test::EventLoopTest {
protected:
    void install()
    {
        m_keys.emplace([this](const QString& text) { m_trouble.push_back(text.toStdString()); });
        m_keys->install([this](std::uint32_t id) { m_pressed.push_back(id); });
    }

    /// What arrived of these keys, and of nothing else: C is pressed last, so all that went before has been delivered when it
    /// comes.
    std::vector<std::uint32_t> press(const std::string& keys)
    {
        m_pressed.clear();
        runCommand("xdotool " + keys + " key ctrl+alt+c");
        EXPECT_TRUE(pumpUntil([&] { return !m_pressed.empty() && m_pressed.back() == 6; }));
        if (!m_pressed.empty())
            m_pressed.pop_back();
        return m_pressed;
    }

    /// Whether the other program gets this key.
    bool takeAway(xcb_keycode_t key)
    {
        return !m_program.check(
            xcb_grab_key_checked(m_program, 0, m_program.root(), controlAlt, key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    }

    /// Whether the keys are grabbed there, and there only, after a change of the keyboard.
    bool moved(xcb_keycode_t from, xcb_keycode_t to)
    {
        const auto isFree = [this](xcb_keycode_t key) {
            const bool taken = takeAway(key);
            xcb_ungrab_key(m_program, key, m_program.root(), XCB_MOD_MASK_ANY);
            return taken;
        };
        return pumpUntil([&] { return isFree(from) && !isFree(to); });
    }

    std::uint16_t locks()
    {
        const auto pointer = m_program.receive(xcb_query_pointer_reply, xcb_query_pointer(m_program, m_program.root()));
        return pointer->mask & (XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2);
    }

    test::XServer m_screen{ 320, 240 };
    xcb::Connection m_program; ///< Of another program.
    std::optional<HotKeys> m_keys;
    std::vector<std::uint32_t> m_pressed;
    std::vector<std::string> m_trouble;
};

} // namespace

TEST_F(HotKeysTest, arriveInEveryStateOfTheLocks)
{
    install();
    std::vector<std::uint16_t> states;
    for (const char* lock : { "Caps_Lock", "Num_Lock", "Caps_Lock", "Num_Lock" }) {
        runCommand(std::string("xdotool key ") + lock);
        states.push_back(locks());
        EXPECT_THAT(press("key ctrl+alt+r key ctrl+alt+b key ctrl+alt+1 key ctrl+alt+2 key ctrl+alt+3"), ElementsAre(1, 2, 3, 4, 5))
            << lock;
    }
    EXPECT_THAT(states, ElementsAre(XCB_MOD_MASK_LOCK, XCB_MOD_MASK_LOCK | XCB_MOD_MASK_2, XCB_MOD_MASK_2, 0));
    EXPECT_THAT(m_trouble, IsEmpty());
}

TEST_F(HotKeysTest, arriveOnceForEachPressWithExactlyTheirModifiers)
{
    install();
    EXPECT_THAT(press("key r key ctrl+r key alt+r key ctrl+alt+shift+r key ctrl+alt+super+r key ctrl+alt+x"), IsEmpty());
    runCommand("xset r rate 60 100");
    EXPECT_THAT(
        press("keydown ctrl keydown alt keydown r sleep 0.5 keyup r keydown r keyup r keyup alt keyup ctrl"), ElementsAre(1, 1));
    // Modifiers that are let go first, what is typed then, and a key that is still held when the next one comes.
    EXPECT_THAT(press("keydown ctrl keydown alt keydown r keyup ctrl keyup alt key b sleep 0.3 keyup r"), ElementsAre(1));
    EXPECT_THAT(press("keydown ctrl keydown alt keydown r keydown b keyup r keyup b keydown b keyup b keyup alt keyup ctrl"),
        ElementsAre(1, 2, 2));
}

TEST_F(HotKeysTest, thatAnotherProgramHasAreNamedAndTheOthersWork)
{
    ASSERT_TRUE(takeAway(keyR));
    install();
    EXPECT_THAT(m_trouble, ElementsAre("⌃⌥R is used by another program"));
    EXPECT_THAT(press("key ctrl+alt+r key ctrl+alt+b key Caps_Lock key ctrl+alt+r key Caps_Lock"), ElementsAre(2));

    m_keys.reset();
    EXPECT_TRUE(takeAway(keyB)) << "ours are given back";
    m_trouble.clear();
    install();
    EXPECT_THAT(m_trouble, ElementsAre("⌃⌥R and ⌃⌥B are used by another program"));
}

TEST_F(HotKeysTest, followTheirSignsOverTheKeyboard)
{
    install();
    runCommand("xmodmap -e 'keycode 27 = x X' -e 'keycode 53 = r R'");
    ASSERT_TRUE(moved(keyR, keyX));
    EXPECT_THAT(press("key ctrl+alt+27 key ctrl+alt+53 key ctrl+alt+53"), ElementsAre(1, 1));

    // Where no key says R, the one in its place is it.
    runCommand("setxkbmap ru");
    ASSERT_TRUE(moved(keyX, keyR));
    m_pressed.clear();
    runCommand("xdotool key ctrl+alt+53 key ctrl+alt+27 key ctrl+alt+54");
    EXPECT_TRUE(pumpUntil([&] { return m_pressed == std::vector<std::uint32_t>{ 1, 6 }; })) << testing::PrintToString(m_pressed);
}

TEST_F(HotKeysTest, surviveTheEndOfTheServer)
{
    install();
    m_screen.kill();
    EXPECT_FALSE(pumpUntil([&] { return !m_pressed.empty(); }, std::chrono::milliseconds(100)));
    m_keys.reset();

    unsetenv("DISPLAY");
    install();
    EXPECT_THAT(m_trouble, ElementsAre("Hot keys do not work on this desktop"));
}

} // namespace vantry
