#pragma once

#include "platform/ClientWindows.h"
#include "platform/PixelRect.h"

#include <memory>
#include <stop_token>

namespace vantry {

class AccessibleTree;

/// Where in a browser's window the page is, and why that cannot be told.
struct PageArea {
    enum class Trouble {
        None,
        NoPage, ///< The window has none.
        Silent, ///< The program says nothing of its windows: it was started before it was asked to.
        Empty, ///< It says no more than that there is a window.
    };

    PixelRect page{}; ///< On the desktop, in pixels; empty unless there is no trouble.
    Trouble trouble = Trouble::None;
};

/// Looks through what a browser says of its window for the page. Belongs to one thread.
class PageFinder {
public:
    /// Throws AppError when the desktop does not show what is in other windows.
    PageFinder();
    ~PageFinder();

    /// Waits a few seconds for a browser that begins to say what it shows. Ends early, with no page, when it is asked to stop.
    PageArea pageArea(const ClientWindow& window, const std::stop_token& stop) const;

private:
    const std::unique_ptr<AccessibleTree> m_tree;
};

} // namespace vantry
