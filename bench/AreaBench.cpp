#include "Figure.h"

#include "capture/BrowserPage.h"
#include "platform/AccessibilitySwitch.h"
#include "platform/Displays.h"
#include "support/HoldsSoon.h"
#include "support/TestDesktop.h"
#include "support/WebBrowser.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <vector>

namespace vantry::bench {

namespace {

constexpr std::uint32_t colour = 0x20C060;

bool isFound(const Display& display)
{
    try {
        browserPageCrop(display, {});
        return true;
    } catch (const AppError&) {
        return false;
    }
}

/// From the click to the crop, once the browser has said what it shows: the median.
void measure()
{
    int argumentCount = 1;
    char name[] = "bench";
    char* arguments[]{ name, nullptr };
    const QCoreApplication application(argumentCount, arguments);
    AccessibilitySwitch accessibility;
    accessibility.switchOn();
    const test::WebBrowser browser(test::WebBrowser::Kind::Chromium, 1, { .colour = colour, .elements = 5000 });
    test::TestDesktop desktop;
    const Display display = displays().at(0);
    if (!test::holdsSoon([&] { return !test::WebBrowser::place(desktop, colour).isEmpty(); }) || !isFound(display))
        throw std::runtime_error("The page was not found");
    std::vector<double> times;
    for (int i = 0; i < 15; ++i) {
        const auto start = std::chrono::steady_clock::now();
        if (!isFound(display))
            throw std::runtime_error("The page was not found again");
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count());
    }
    std::ranges::sort(times);
    report("area.browser_ms", times[times.size() / 2], "ms");
}

const FigureGroup group("area", measure);

} // namespace

} // namespace vantry::bench
