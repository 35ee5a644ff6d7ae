#pragma once

#include "base/HostTime.h"
#include "platform/ChangedTiles.h"
#include "platform/CursorImage.h"
#include "platform/DamageWatch.h"
#include "platform/Displays.h"
#include "platform/LeftOutAreas.h"
#include "platform/RootBackground.h"
#include "platform/SharedImages.h"
#include "platform/Uncovering.h"
#include "platform/WindowStack.h"
#include "platform/Xcb.h"

#include <memory>
#include <sys/types.h>
#include <vector>

namespace vantry {

/// Whether the mouse pointer is in a picture.
enum class Cursor { Drawn, LeftOut };

/// Reads the pixels of one display, and only those that may have changed since they were last read: with the cursor drawn in, if it
/// is wanted, and without the windows of the processes that are left out. Belongs to one thread.
class ScreenReader {
public:
    /// Throws AppError when the display cannot be read.
    ScreenReader(const Display&, std::vector<pid_t> leftOut, Cursor cursor = Cursor::Drawn);
    ~ScreenReader();

    /// In pixels: the display's size, rounded down to even numbers.
    int width() const { return m_bounds.width; }
    int height() const { return m_bounds.height; }

    struct Reading {
        HostTime time{}; ///< When the pixels were taken.
        std::vector<PixelBlock> blocks{}; ///< From the display's corner on; even edges; valid until the next `read`.
    };

    /// Everything the first time; no blocks when nothing can have changed. Throws AppError when the display is gone or has another
    /// size than at the start, and when the connection is lost.
    Reading read();

private:
    void prepare();
    void handleEvents();
    void collectChanges();
    void checkDisplay();
    void checkComposition();
    void updateWindows();
    void updateLeftOut();
    void watchDamage();
    void collectDamage();
    void collectCursor();
    bool windowsMoved();
    Reading take(const std::vector<PixelRect>&);
    void change(const PixelRect& onDesktop) { m_changed.add(onDesktop.moved(-m_bounds.x, -m_bounds.y)); }

    xcb::Connection m_connection;
    const xcb_atom_t m_compositor;
    const int m_fixesEvents;
    const int m_randrEvents;
    const Display m_display;
    const Cursor m_cursorWanted;
    PixelRect m_bounds; ///< What is read, on the desktop.
    ChangedTiles m_changed;
    WindowStack m_windows;
    DamageWatch m_damage;
    LeftOutAreas m_leftOut;
    CursorImage m_cursor;
    SharedImages m_images;
    Uncovering m_uncovering;
    std::unique_ptr<RootBackground> m_background;
    Composition m_composition = Composition::Immediate;
    bool m_displayIsStale = false;
    bool m_compositionIsStale = true;
    bool m_backgroundIsStale = true;
};

} // namespace vantry
