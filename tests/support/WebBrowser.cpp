#include "support/WebBrowser.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace vantry::test {

WebBrowser::WebBrowser(Kind kind, int scale, const Page& page)
{
    const std::string line =
        "exec " + command(kind, scale) + " 'file://" + writePage(page) + "' >'" + (m_folder / "log").string() + "' 2>&1";
    m_program = std::make_unique<Program>(std::vector<std::string>{ "sh", "-c", line });
}

std::string WebBrowser::writePage(const Page& page) const
{
    const auto file = m_folder / "page.html";
    char colour[8];
    std::snprintf(colour, sizeof colour, "#%06x", page.colour);
    std::ofstream html(file);
    html << "<!doctype html><title>Colours</title><body style='margin:0;overflow:hidden;background:" << colour
         << ";color:" << colour << "'>";
    for (int i = 0; i < page.elements; ++i)
        html << "<p style='margin:0;height:0;overflow:hidden'>" << i << "</p>";
    return file.string();
}

/// Nothing of what browsers do at their first start. The sandbox of one does not work for the administrator, as whom machines that
/// test often run.
std::string WebBrowser::command(Kind kind, int scale) const
{
    const std::string folder = m_folder.path().string();
    if (kind == Kind::Chromium)
        return "chromium --no-sandbox --test-type --disable-gpu --no-first-run --no-default-browser-check --password-store=basic "
               "--window-position=40,60 "
               "--window-size="
            + std::to_string(1200 / scale) + "," + std::to_string(800 / scale)
            + " --force-device-scale-factor=" + std::to_string(scale) + " --user-data-dir='" + folder + "/profile'";
    std::ofstream(m_folder / "user.js") << "user_pref('layout.css.devPixelsPerPx', '" << scale << "');\n"
                                        << "user_pref('browser.aboutwelcome.enabled', false);\n"
                                        << "user_pref('browser.shell.checkDefaultBrowser', false);\n"
                                        << "user_pref('datareporting.policy.dataSubmissionEnabled', false);\n"
                                        << "user_pref('toolkit.telemetry.reportingpolicy.firstRun', false);\n"
                                        << "user_pref('termsofuse.bypassNotification', true);\n";
    return "firefox-esr --no-remote --width 1200 --height 800 --profile '" + folder + "'";
}

PixelRect WebBrowser::place(TestDesktop& desktop, std::uint32_t colour)
{
    const auto& screen = desktop.connection().screen();
    const int width = screen.width_in_pixels, height = screen.height_in_pixels;
    const auto pixels = desktop.pixels({ 0, 0, width, height });
    int left = width, top = height, right = 0, bottom = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            if (pixels[static_cast<std::size_t>(y * width + x)] == colour) {
                left = std::min(left, x);
                right = std::max(right, x + 1);
                top = std::min(top, y);
                bottom = std::max(bottom, y + 1);
            }
    return { left, top, std::max(0, right - left), std::max(0, bottom - top) };
}

} // namespace vantry::test
