#include "support/TestDesktop.h"

#include <chrono>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>

namespace vantry {

namespace {

constexpr int stepsPerSecond = 60;
constexpr int lineHeight = 20;
constexpr int baseline = 14;
constexpr std::uint32_t desk = 0x2C6E63;

struct Ink {
    std::uint32_t text;
    std::uint32_t paper;
};

/// A window of text.
class Page {
public:
    Page(test::TestDesktop& desktop, const PixelRect& place, Ink ink)
        : m_connection(desktop.connection())
        , m_place(place)
        , m_window(desktop.open({ .place = place, .colour = ink.paper }))
        , m_text(context(ink.text, ink.paper))
        , m_paper(context(ink.paper, ink.paper))
    {
    }

    int height() const { return m_place.height; }
    int columns() const { return m_place.width / letterWidth - 2; }

    void write(int column, int top, std::string_view text)
    {
        xcb_image_text_8(m_connection, static_cast<std::uint8_t>(text.size()), m_window, m_text,
            static_cast<std::int16_t>((column + 1) * letterWidth), static_cast<std::int16_t>(top + baseline), text.data());
    }

    /// What comes in from below is empty.
    void scroll(int pixels)
    {
        const auto width = static_cast<std::uint16_t>(m_place.width);
        const auto kept = static_cast<std::uint16_t>(m_place.height - pixels);
        xcb_copy_area(m_connection, m_window, m_window, m_text, 0, static_cast<std::int16_t>(pixels), 0, 0, width, kept);
        const xcb_rectangle_t below{ 0, static_cast<std::int16_t>(kept), width, static_cast<std::uint16_t>(pixels) };
        xcb_poly_fill_rectangle(m_connection, m_window, m_paper, 1, &below);
    }

private:
    static constexpr int letterWidth = 6;

    xcb_gcontext_t context(std::uint32_t foreground, std::uint32_t background)
    {
        constexpr std::string_view name = "fixed"; // Every server has it.
        const auto font = xcb_generate_id(m_connection);
        xcb_open_font(m_connection, font, static_cast<std::uint16_t>(name.size()), name.data());
        const auto made = xcb_generate_id(m_connection);
        const std::uint32_t values[] = { foreground, background, font, 0 };
        xcb_create_gc(
            m_connection, made, m_window, XCB_GC_FOREGROUND | XCB_GC_BACKGROUND | XCB_GC_FONT | XCB_GC_GRAPHICS_EXPOSURES, values);
        xcb_close_font(m_connection, font);
        return made;
    }

    const xcb::Connection& m_connection;
    const PixelRect m_place;
    const xcb_window_t m_window;
    const xcb_gcontext_t m_text;
    const xcb_gcontext_t m_paper;
};

std::uint32_t hash(std::uint32_t value)
{
    value = (value ^ (value >> 16)) * 0x45d9f3b;
    value = (value ^ (value >> 16)) * 0x45d9f3b;
    return value ^ (value >> 16);
}

char letter(int line, int column)
{
    const auto value = hash(static_cast<std::uint32_t>(line * 1000 + column));
    return value % 6 == 0 ? ' ' : static_cast<char>('a' + value % 26);
}

std::string textOf(int line, int columns)
{
    std::string text;
    const auto length = hash(static_cast<std::uint32_t>(line)) % static_cast<std::uint32_t>(columns);
    for (int column = 0; column < static_cast<int>(length); ++column)
        text += letter(line, column);
    return text;
}

/// Fifteen letters a second.
void type(Page& editor, int step)
{
    constexpr int stepsPerLetter = 4;
    if (step % stepsPerLetter)
        return;
    const int letters = step / stepsPerLetter;
    const int columns = editor.columns();
    const int line = letters / columns % (editor.height() / lineHeight);
    const char typed = letter(line, letters % columns);
    editor.write(letters % columns, line * lineHeight, { &typed, 1 });
}

/// Six lines a second.
void run(Page& log, int step)
{
    constexpr int pixels = 2;
    log.scroll(pixels);
    const int scrolled = step * pixels;
    for (int line = (scrolled + log.height() - pixels) / lineHeight; line * lineHeight - scrolled < log.height(); ++line)
        log.write(0, line * lineHeight - scrolled, textOf(line, log.columns()));
}

[[noreturn]] void beBusy()
{
    test::TestDesktop desktop;
    desktop.open({ .place = { 0, 0, 1920, 1080 }, .colour = desk });
    Page editor(desktop, { 60, 68, 1080, 944 }, { 0x202020, 0xFFFFFF });
    Page log(desktop, { 1200, 136, 600, 810 }, { 0xD0D8D0, 0x101820 });
    for (int line = 0; line * lineHeight < editor.height(); ++line)
        editor.write(0, line * lineHeight, textOf(line, editor.columns()));
    const auto start = std::chrono::steady_clock::now();
    for (int step = 0;; ++step) {
        std::this_thread::sleep_until(start + std::chrono::microseconds(1'000'000LL * step / stepsPerSecond));
        type(editor, step);
        run(log, step);
        desktop.finish();
    }
}

} // namespace

} // namespace vantry

/// vantry_screen_activity: somebody types into an editor while a log scrolls beside it, sixty times a second on the environment's
/// display, until it is ended.
int main()
{
    try {
        vantry::beBusy();
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
