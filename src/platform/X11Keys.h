#pragma once

#include "platform/GlobalKeys.h"
#include "platform/Xcb.h"

#include <QSocketNotifier>

#include <map>
#include <set>

namespace vantry {

namespace xcb {
class Keyboard;
}

/// Global keys of an X server: grabs on its root window, one for each state of Caps Lock and Num Lock.
class X11Keys : public GlobalKeys {
public:
    /// Throws AppError when there is no server.
    explicit X11Keys(Handlers);

    void grab(std::vector<GlobalKey>) override;

private:
    void grabAll();
    bool grab(const std::vector<xcb_keycode_t>&) const;
    void release(const std::vector<xcb_keycode_t>&) const;
    std::vector<xcb_keycode_t> keysOf(const GlobalKey&, const xcb::Keyboard&) const;
    void readEvents();
    void handle(const xcb_generic_event_t&);
    void press(const xcb_key_press_event_t&);
    void letGo(xcb_keycode_t);

    const Handlers m_handlers;
    const xcb::Connection m_connection;
    const int m_keyboardChange; ///< The number of the events that report one, or 0.
    std::vector<GlobalKey> m_keys;
    std::map<xcb_keycode_t, std::uint32_t> m_grabbed; ///< The ids of the keys that are ours.
    std::uint16_t m_numLock = 0;
    bool m_areSomeTaken = false; ///< By another program.
    std::set<xcb_keycode_t> m_held;
    std::vector<std::uint32_t> m_pressed; ///< Ids of presses that are not told yet.
    bool m_keyboardChanged = false;
    QSocketNotifier m_notifier;
};

} // namespace vantry
