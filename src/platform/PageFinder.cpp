#include "platform/PageFinder.h"

#include "platform/AccessibleTree.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstdlib>
#include <iterator>
#include <mutex>
#include <optional>

namespace vantry {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t mostElements = 1500;
constexpr auto longestWait = std::chrono::milliseconds(2500);

/// False when it was asked to stop.
bool pause(std::chrono::milliseconds time, const std::stop_token& stop)
{
    std::mutex mutex;
    std::condition_variable_any condition;
    std::unique_lock lock(mutex);
    condition.wait_for(lock, stop, time, [] { return false; });
    return !stop.stop_requested();
}

bool isWebArea(AccessibleRole role)
{
    return role == AccessibleRole::DocumentWeb || role == AccessibleRole::DocumentFrame;
}

long areaOf(const PixelRect& rect)
{
    return rect.isEmpty() ? 0 : static_cast<long>(rect.width) * rect.height;
}

int distance(const PixelRect& a, const PixelRect& b)
{
    return std::abs(a.x - b.x) + std::abs(a.y - b.y) + std::abs(a.width - b.width) + std::abs(a.height - b.height);
}

/// Programs count in pixels or in something larger, and some do both: Chromium tells of its window in its own pixels, and of the
/// page in those of the screen. Which it is shows in what fits into the window.
class Calibration {
public:
    Calibration(const ClientWindow& window, const PixelRect& extents)
        : m_extents(extents)
        , m_window(mismatch(window.place, extents) < mismatch(window.content, extents) ? window.place : window.content)
        , m_scale(std::round(4.0 * m_window.width / extents.width) / 4) // What borders add is no scale.
    {
    }

    PixelRect onDesktop(const PixelRect& rect) const
    {
        if (m_scale == 1 || m_scale == 0)
            return rect.common(m_window);
        const int left = across(rect.x), top = down(rect.y);
        const PixelRect scaled{ left, top, across(rect.right()) - left, down(rect.bottom()) - top };
        return (fits(rect) && !fits(scaled) ? rect : scaled).common(m_window);
    }

    PixelRect below(int y) const { return onDesktop({ m_extents.x, y, m_extents.width, m_extents.bottom() - y }); }

private:
    /// How far the two are from having the same shape.
    static double mismatch(const PixelRect& window, const PixelRect& extents)
    {
        return std::abs(static_cast<double>(window.width) * extents.height - static_cast<double>(window.height) * extents.width)
            / extents.width;
    }

    bool fits(const PixelRect& rect) const
    {
        constexpr int tolerance = 4;
        const PixelRect room{ m_window.x - tolerance, m_window.y - tolerance, m_window.width + 2 * tolerance,
            m_window.height + 2 * tolerance };
        return room.contains(rect);
    }

    int across(int x) const { return m_window.x + static_cast<int>(std::lround((x - m_extents.x) * m_scale)); }
    int down(int y) const { return m_window.y + static_cast<int>(std::lround((y - m_extents.y) * m_scale)); }

    PixelRect m_extents;
    PixelRect m_window;
    double m_scale;
};

struct Frame {
    AccessibleElement element{};
    PixelRect extents{};
};

/// What a walk came across.
struct Found {
    PixelRect page{}; ///< Of the largest web area.
    std::optional<int> toolBarBottom{}; ///< Of the lowest one.
};

/// The program's window that has the same title; of several, and without one, the one that is nearest.
std::optional<Frame> frameOf(const AccessibleTree& tree, const ClientWindow& window, const AccessibleElement& program)
{
    std::optional<Frame> best;
    bool bestHasTitle = false;
    const auto elements = tree.children({ program }).front();
    for (const auto& element : elements) {
        const auto extents = tree.extents(element);
        if (!extents || extents->isEmpty())
            continue;
        const bool hasTitle = tree.name(element).toStdString() == window.title;
        const auto nearness = [&](const PixelRect& rect) {
            return std::min(distance(rect, window.place), distance(rect, window.content));
        };
        if (!best || hasTitle > bestHasTitle || (hasTitle == bestHasTitle && nearness(*extents) < nearness(best->extents))) {
            best = Frame{ element, *extents };
            bestHasTitle = hasTitle;
        }
    }
    return best;
}

void look(const AccessibleTree& tree, const AccessibleElement& element, AccessibleRole role, Found& found)
{
    if (role != AccessibleRole::ToolBar && !isWebArea(role))
        return;
    const auto extents = tree.extents(element);
    if (!extents || extents->isEmpty() || !tree.isShowing(element))
        return;
    if (role == AccessibleRole::ToolBar)
        found.toolBarBottom = std::max(found.toolBarBottom.value_or(extents->bottom()), extents->bottom());
    else if (areaOf(*extents) > areaOf(found.page))
        found.page = *extents;
}

/// Level by level. A web area is not entered: what is in it may be without end.
Found walk(const AccessibleTree& tree, const AccessibleElement& frame, const std::stop_token& stop)
{
    Found found;
    std::size_t visited = 0;
    for (std::vector level{ frame }; !level.empty() && visited < mostElements && !stop.stop_requested();) {
        level.resize(std::min(level.size(), mostElements - visited));
        visited += level.size();
        const auto roles = tree.roles(level);
        std::vector<AccessibleElement> entered;
        for (std::size_t i = 0; i < level.size(); ++i) {
            look(tree, level[i], roles[i], found);
            if (!isWebArea(roles[i]))
                entered.push_back(level[i]);
        }
        level.clear();
        for (auto& children : tree.children(entered))
            std::ranges::move(children, std::back_inserter(level));
    }
    return found;
}

/// What one look at a window gives.
struct Look {
    PageArea area{};
    PixelRect belowToolBars{};
};

Look lookAt(const AccessibleTree& tree, const ClientWindow& window, const std::stop_token& stop)
{
    Look look{ .area = { .trouble = PageArea::Trouble::Silent } };
    for (const auto& program : tree.programsOf(window.process)) {
        const auto frame = frameOf(tree, window, program);
        if (!frame)
            continue;
        tree.askForDetails(frame->element);
        const Found found = walk(tree, frame->element, stop);
        const Calibration calibration(window, frame->extents);
        if (const PixelRect page = calibration.onDesktop(found.page); !found.page.isEmpty() && !page.isEmpty())
            return { .area = { page } };
        if (found.toolBarBottom)
            look.belowToolBars = calibration.below(*found.toolBarBottom);
        const bool isChromium = tree.toolkit(program) == QLatin1String("Chromium");
        look.area.trouble = isChromium ? PageArea::Trouble::Empty : PageArea::Trouble::NoPage;
    }
    return look;
}

} // namespace

PageFinder::PageFinder()
    : m_tree(std::make_unique<AccessibleTree>())
{
}

PageFinder::~PageFinder() = default;

PageArea PageFinder::pageArea(const ClientWindow& window, const std::stop_token& stop) const
{
    const auto deadline = Clock::now() + longestWait;
    Look look = lookAt(*m_tree, window, stop);
    while (look.area.page.isEmpty() && Clock::now() < deadline && pause(std::chrono::milliseconds(100), stop))
        look = lookAt(*m_tree, window, stop);
    if (look.area.page.isEmpty() && !look.belowToolBars.isEmpty())
        return { look.belowToolBars };
    return look.area;
}

} // namespace vantry
