#pragma once

#include "support/Command.h"
#include "support/HoldsSoon.h"
#include "support/TemporaryFolder.h"
#include "support/TestDesktop.h"
#include "support/XServer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>

namespace vantry::test {

/// The program itself with its windows, on a screen with a window manager. There is no media server, so no camera and no sound.
class WindowTest : public testing::Test {
protected:
    explicit WindowTest(int screenWidth = 1280, int screenHeight = 720)
        : m_screen(screenWidth, screenHeight)
    {
    }

    void SetUp() override
    {
        ASSERT_TRUE(
            holdsSoon([] { return runCommand("xprop -root _NET_SUPPORTING_WM_CHECK").find("window id") != std::string::npos; }));
    }

    /// Starts the program and waits for its window.
    void start(const std::string& arguments = {})
    {
        const std::string environment = "HOME='" + m_home.path().string() + "' XDG_CONFIG_HOME='" + (m_home / "config").string()
            + "' PIPEWIRE_REMOTE=none LC_ALL=C.UTF-8 QT_QPA_PLATFORM=xcb QT_QUICK_BACKEND=software ";
        m_program = std::make_unique<Program>(std::vector<std::string>{ "sh", "-c",
            "exec env " + environment + VANTRY_PROGRAM + " " + arguments + " >'" + (m_home / "log").string() + "' 2>&1" });
        ASSERT_TRUE(holdsSoon([&] { return isSeen("^Vantry$"); }));
    }

    static bool isSeen(const std::string& title)
    {
        return !runCommand("xdotool search --onlyvisible --name '" + title + "' || true").empty();
    }

    /// On the screen, as xdotool says it.
    static PixelRect placeOf(const std::string& title)
    {
        PixelRect place{};
        const std::string text =
            runCommand("xdotool search --onlyvisible --name '" + title + "' getwindowgeometry --shell || true");
        std::sscanf(text.c_str(), "WINDOW=%*d\nX=%d\nY=%d\nWIDTH=%d\nHEIGHT=%d", &place.x, &place.y, &place.width, &place.height);
        return place;
    }

    std::uint32_t colourAt(int x, int y) { return m_desktop.pixels({ x, y, 1, 1 }).at(0); }

    const TemporaryFolder m_home;
    const XServer m_screen;
    const Program m_windowManager{ { "openbox", "--sm-disable" } };
    TestDesktop m_desktop;
    std::unique_ptr<Program> m_program;
};

} // namespace vantry::test
