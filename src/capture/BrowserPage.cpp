#include "capture/BrowserPage.h"

#include "base/Words.h"
#include "platform/AccessibilitySwitch.h"
#include "platform/ClientWindows.h"
#include "platform/PageFinder.h"
#include "platform/WebBrowsers.h"
#include "platform/Xcb.h"

namespace vantry {

namespace {

CropRect fractionsOf(const PixelRect& area, const Display& display)
{
    const auto width = static_cast<double>(display.width), height = static_cast<double>(display.height);
    return { (area.x - display.x) / width, (area.y - display.y) / height, area.width / width, area.height / height };
}

AppError noPage(PageArea::Trouble trouble)
{
    switch (trouble) {
    case PageArea::Trouble::Silent:
        return AppError(
            "The browser was started before Vantry was allowed to look at it. Close the browser and open it again, then "
            "click again.");
    case PageArea::Trouble::Empty:
        return AppError(
            "This browser shows its page only when it is started with --force-renderer-accessibility. Start it so, then "
            "click again.");
    case PageArea::Trouble::None:
    case PageArea::Trouble::NoPage:
        break;
    }
    return AppError("No browser window on this screen. Open the page you want to record, then click again.");
}

} // namespace

LookingNotAllowed::LookingNotAllowed()
    : AppError(words::allowLooking)
{
}

CropRect browserPageCrop(const Display& display, const std::stop_token& stop)
{
    if (!AccessibilitySwitch::isOn())
        throw LookingNotAllowed();
    const PixelRect bounds{ display.x, display.y, display.width, display.height };
    const xcb::Connection connection;
    const WebBrowsers browsers;
    const PageFinder finder;
    auto trouble = PageArea::Trouble::NoPage;
    for (const auto& window : clientWindows(connection)) {
        if (!window.place.touches(bounds) || !browsers.own(window))
            continue;
        const PageArea area = finder.pageArea(window, stop);
        if (const PixelRect page = area.page.common(bounds); !page.isEmpty())
            return fractionsOf(page, display);
        if (trouble == PageArea::Trouble::NoPage)
            trouble = area.trouble;
    }
    throw noPage(trouble);
}

} // namespace vantry
