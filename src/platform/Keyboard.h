#pragma once

#include "platform/Xcb.h"

#include <cstdint>
#include <memory>
#include <vector>
#include <xcb/xcb_keysyms.h>

namespace vantry::xcb {

/// What is on the keys of a server's keyboard, as it was when this was made.
class Keyboard {
public:
    explicit Keyboard(const Connection&);

    /// The keys that make a sign, on whichever of their levels. Signs are X11's numbers; of letters and digits they are ASCII's.
    std::vector<xcb_keycode_t> keysFor(xcb_keysym_t sign) const;

    /// The modifiers that the keys of a sign set.
    std::uint16_t modifiersOf(xcb_keysym_t sign) const;

private:
    struct FreeSymbols {
        void operator()(xcb_key_symbols_t* symbols) const { xcb_key_symbols_free(symbols); }
    };

    const Connection& m_connection;
    std::unique_ptr<xcb_key_symbols_t, FreeSymbols> m_symbols;
};

/// Asks the server to report a held key as pressed again and again without a release in between, and to report changes of the
/// keyboard. The number that the events of such changes have, or 0 where the server knows only the core protocol's.
int watchKeyboard(const Connection&);

} // namespace vantry::xcb
