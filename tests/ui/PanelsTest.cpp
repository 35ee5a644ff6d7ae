#include "project/ProjectFile.h"
#include "ui/WindowTest.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

namespace vantry {

namespace fs = std::filesystem;
using test::holdsSoon;
using test::runCommand;

namespace {

constexpr std::uint32_t green = 0x2E7D32, hudColour = 0x181C24;
constexpr PixelRect hud{ 260, 12, 760, 64 };
constexpr int backButton = 575, stopButton = 665, foldButton = 732; ///< From the panel's left edge.

/// The panels above another program that fills the screen.
class PanelsTest : public test::WindowTest {
protected:
    void SetUp() override
    {
        WindowTest::SetUp();
        m_other = openFullScreen(green);
        start();
        m_desktop.movePointer(1200, 700);
    }

    /// A window that fills the screen, as a player's or a presentation's does. What the screen shows in its middle is that window.
    xcb_window_t openFullScreen(std::uint32_t colour)
    {
        const auto window = m_desktop.open({ .place = { 100, 100, 300, 200 }, .colour = colour, .managed = true });
        // The window manager does not hear it before it knows the window.
        EXPECT_TRUE(holdsSoon([&] {
            askForFullScreen(window);
            return colourAt(5, 715) == colour && colourAt(640, 360) == colour;
        }));
        return window;
    }

    void askForFullScreen(xcb_window_t window)
    {
        const auto& connection = m_desktop.connection();
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = connection.atom("_NET_WM_STATE");
        message.data.data32[0] = 1; // add
        message.data.data32[1] = connection.atom("_NET_WM_STATE_FULLSCREEN");
        xcb_send_event(connection, 0, connection.root(), XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
            reinterpret_cast<const char*>(&message));
        m_desktop.finish();
    }

    void focus(xcb_window_t window)
    {
        runCommand("xdotool windowfocus --sync " + std::to_string(window));
        ASSERT_TRUE(holdsSoon([&] { return focused() == window; }));
    }

    xcb_window_t focused()
    {
        const auto& connection = m_desktop.connection();
        return connection.receive(xcb_get_input_focus_reply, xcb_get_input_focus(connection))->focus;
    }

    bool hudIsOnTop() { return colourAt(hud.x + 470, hud.y + 6) == hudColour; }

    /// `x` from the panel's left edge, in its middle.
    static void click(int x)
    {
        runCommand("xdotool mousemove " + std::to_string(hud.x + x) + " " + std::to_string(hud.y + hud.height / 2) + " click 1");
    }

    /// Whether the other program hears of a press of the mouse soon.
    bool otherIsPressed()
    {
        return holdsSoon([this] {
            const auto event = m_desktop.connection().nextEvent();
            return event && (event->response_type & 0x7F) == XCB_BUTTON_PRESS;
        });
    }

    void listenToPresses(xcb_window_t window) const
    {
        const std::uint32_t mask = XCB_EVENT_MASK_BUTTON_PRESS;
        xcb_change_window_attributes(m_desktop.connection(), window, XCB_CW_EVENT_MASK, &mask);
        xcb_flush(m_desktop.connection());
    }

    void startRecording()
    {
        // How soon the program listens to keys is seen by what one of them does.
        ASSERT_TRUE(holdsSoon([this] {
            runCommand("xdotool key ctrl+alt+1");
            return fs::exists(m_home / "config/vantry/settings.ini");
        }));
        runCommand("xdotool key ctrl+alt+r");
        ASSERT_TRUE(holdsSoon([this] { return isSeen("Vantry controls") && !fileWith(".mov").empty(); }));
    }

    Project project() const
    {
        const fs::path file = fileWith(".json");
        return file.empty() ? Project() : loadProject(file.parent_path());
    }

    /// Of what was recorded.
    fs::path fileWith(const std::string& extension) const
    {
        if (fs::exists(m_home / "Videos/Vantry"))
            for (const auto& entry : fs::recursive_directory_iterator(m_home / "Videos/Vantry"))
                if (entry.path().extension() == extension)
                    return entry.path();
        return {};
    }

    xcb_window_t m_other = XCB_NONE;
};

} // namespace

TEST_F(PanelsTest, floatAboveFullScreenWindowsAndLeaveThemTheKeyboard)
{
    focus(m_other);
    startRecording();
    EXPECT_FALSE(isSeen("^Vantry$")) << "the main window is hidden";
    EXPECT_FALSE(isSeen("Vantry camera")) << "there is no camera";
    EXPECT_EQ(placeOf("Vantry controls"), hud);
    EXPECT_TRUE(holdsSoon([&] { return hudIsOnTop(); }));
    EXPECT_EQ(colourAt(hud.x, hud.y), green) << "its corners are round";
    EXPECT_EQ(focused(), m_other);

    runCommand("xdotool set_desktop 1");
    EXPECT_TRUE(holdsSoon([&] { return colourAt(640, 400) != green; })) << "another desktop";
    EXPECT_TRUE(hudIsOnTop());
    runCommand("xdotool set_desktop 0");
    ASSERT_TRUE(holdsSoon([&] { return colourAt(640, 400) == green; }));

    // One that comes later lies below it too.
    const auto later = openFullScreen(0x7D2E32);
    EXPECT_TRUE(holdsSoon([&] { return hudIsOnTop(); }));
    focus(later);

    click(350);
    EXPECT_TRUE(holdsSoon([&] { return !project().layouts.empty() && project().layouts.back().layout == Layout::screen; }));
    EXPECT_EQ(focused(), later);

    click(stopButton);
    EXPECT_TRUE(holdsSoon([&] { return project().clips.size() == 1; }));
    EXPECT_TRUE(holdsSoon([&] { return isSeen("^Vantry$") && !isSeen("Vantry controls"); }));
    EXPECT_TRUE(holdsSoon([&] { return focused() != later; })) << "the window came back to be used";
}

TEST_F(PanelsTest, areNotShownForWhatCannotBeRecordedAndTheWindowSaysWhy)
{
    std::ofstream(m_home / "Videos") << "no folder";
    for (const bool isMinimised : { false, true }) {
        if (isMinimised)
            runCommand("xdotool search --name '^Vantry$' windowminimize");
        focus(m_other);
        ASSERT_TRUE(holdsSoon([&] { return colourAt(640, 360) == green; }));
        // Until the program listens to keys.
        EXPECT_TRUE(holdsSoon([&] {
            runCommand("xdotool key ctrl+alt+r");
            return focused() != m_other && colourAt(640, 360) != green;
        }));
        EXPECT_FALSE(isSeen("Vantry controls"));
        runCommand("xdotool key Return");
    }
}

TEST_F(PanelsTest, areDraggedByTheirBackgroundAndFoldedAndRememberIt)
{
    startRecording();
    runCommand("xdotool mousemove 730 44 mousedown 1 mousemove 760 74 mousemove 630 244 mouseup 1");
    const PixelRect dragged{ 160, 212, 760, 64 };
    EXPECT_TRUE(holdsSoon([&] { return placeOf("Vantry controls") == dragged; }));
    runCommand("xdotool mousemove 890 244 click 1");
    const PixelRect pill{ 160 + 760 - 284, 212, 284, 44 };
    EXPECT_TRUE(holdsSoon([&] { return placeOf("Vantry controls") == pill; })) << "the right edge stays";
    runCommand("xdotool key ctrl+alt+r");
    ASSERT_TRUE(holdsSoon([&] { return !isSeen("Vantry controls") && isSeen("^Vantry$"); }));

    m_program->end();
    start();
    startRecording();
    EXPECT_EQ(placeOf("Vantry controls"), pill);
    // Unfolded it stays on the screen.
    runCommand("xdotool mousemove 660 234 mousedown 1 mousemove 600 234 mousemove -- -90 800 mouseup 1");
    EXPECT_TRUE(holdsSoon([&] { return placeOf("Vantry controls") == PixelRect{ 0, 676, 284, 44 }; }));
    runCommand("xdotool mousemove 262 698 click 1");
    EXPECT_TRUE(holdsSoon([&] { return placeOf("Vantry controls") == PixelRect{ 0, 656, 760, 64 }; }));
}

TEST_F(PanelsTest, theWaysBackCloseWithAClickElsewhereWhichCountsThere)
{
    startRecording();
    listenToPresses(m_desktop.open({ .place = { 50, 550, 100, 100 } }));
    focus(m_other);
    click(backButton);
    ASSERT_TRUE(holdsSoon([&] { return isSeen("Vantry back"); }));
    EXPECT_EQ(focused(), m_other);
    runCommand("xdotool mousemove 100 600 sleep 0.2 click 1");
    EXPECT_TRUE(otherIsPressed());
    EXPECT_TRUE(holdsSoon([&] { return !isSeen("Vantry back"); }));
    EXPECT_EQ(project().clips.size(), 0);

    click(backButton);
    ASSERT_TRUE(holdsSoon([&] { return isSeen("Vantry back"); }));
    click(backButton);
    EXPECT_TRUE(holdsSoon([&] { return !isSeen("Vantry back"); }));

    click(backButton);
    ASSERT_TRUE(holdsSoon([&] { return isSeen("Vantry back"); }));
    const PixelRect menu = placeOf("Vantry back");
    runCommand("xdotool mousemove " + std::to_string(menu.x + 40) + " " + std::to_string(menu.y + 20) + " click 1");
    EXPECT_TRUE(holdsSoon([&] { return project().clips.size() == 1; }));
    EXPECT_TRUE(holdsSoon([&] { return !isSeen("Vantry back") && isSeen("^Vantry$"); }));
}

TEST_F(PanelsTest, areNoPartOfTheRecording)
{
    startRecording();
    ASSERT_TRUE(holdsSoon([&] { return hudIsOnTop(); }));
    EXPECT_TRUE(isSeen("Vantry notices")) << "there is no media server";
    click(backButton);
    ASSERT_TRUE(holdsSoon([&] { return isSeen("Vantry back"); }));
    // Something changes, or the clip would have one picture only.
    m_desktop.fill(m_other, { 0, 600, 50, 50 }, 0xFFFFFF);
    runCommand("xdotool mousemove 730 700 sleep 0.5 key ctrl+alt+r");
    ASSERT_TRUE(holdsSoon([&] { return project().clips.size() == 1; }));
    const std::string luma =
        runCommand("ffmpeg -v error -i '" + fileWith(".mov").string() + "' -vf crop=764:240:258:10 -f rawvideo -pix_fmt gray -");
    constexpr std::size_t area = 764 * 240;
    ASSERT_GE(luma.size(), 2 * area);
    // The pointer was there before.
    const auto seen = std::string_view(luma).substr(luma.size() - area);
    const auto [darkest, lightest] = std::ranges::minmax(seen, {}, [](char value) { return static_cast<unsigned char>(value); });
    EXPECT_NEAR(static_cast<unsigned char>(darkest), 0.2126 * 0x2E + 0.7152 * 0x7D + 0.0722 * 0x32, 8);
    EXPECT_NEAR(static_cast<unsigned char>(lightest), static_cast<unsigned char>(darkest), 6);
}

} // namespace vantry
