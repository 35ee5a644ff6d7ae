#include "platform/Keyboard.h"

// The header has a field of that name, which is a word of the language.
#define explicit isExplicit
#include <xcb/xkb.h>
#undef explicit

namespace vantry::xcb {

Keyboard::Keyboard(const Connection& connection)
    : m_connection(connection)
    , m_symbols(xcb_key_symbols_alloc(connection))
{
}

std::vector<xcb_keycode_t> Keyboard::keysFor(xcb_keysym_t sign) const
{
    std::vector<xcb_keycode_t> keys;
    const Received<xcb_keycode_t> found(xcb_key_symbols_get_keycode(m_symbols.get(), sign));
    for (const auto* key = found.get(); key && *key != XCB_NO_SYMBOL; ++key)
        keys.push_back(*key);
    return keys;
}

std::uint16_t Keyboard::modifiersOf(xcb_keysym_t sign) const
{
    const auto mapping = m_connection.receive(xcb_get_modifier_mapping_reply, xcb_get_modifier_mapping(m_connection));
    if (!mapping)
        return 0;
    unsigned modifiers = 0;
    const auto* keys = xcb_get_modifier_mapping_keycodes(mapping.get());
    for (const xcb_keycode_t wanted : keysFor(sign)) {
        for (int i = 0; i < xcb_get_modifier_mapping_keycodes_length(mapping.get()); ++i) {
            if (keys[i] == wanted)
                modifiers |= 1u << (i / mapping->keycodes_per_modifier);
        }
    }
    return static_cast<std::uint16_t>(modifiers);
}

int watchKeyboard(const Connection& connection)
{
    if (!connection.has(xcb_xkb_id))
        return 0;
    const auto version = xcb_xkb_use_extension(connection, XCB_XKB_MAJOR_VERSION, XCB_XKB_MINOR_VERSION);
    static_cast<void>(connection.receive(xcb_xkb_use_extension_reply, version));
    const auto flags = xcb_xkb_per_client_flags(connection, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT,
        XCB_XKB_PER_CLIENT_FLAG_DETECTABLE_AUTO_REPEAT, 0, 0, 0);
    static_cast<void>(connection.receive(xcb_xkb_per_client_flags_reply, flags));
    // Whoever uses the extension is no longer told by the core protocol.
    constexpr std::uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY | XCB_XKB_EVENT_TYPE_MAP_NOTIFY;
    constexpr std::uint16_t parts = XCB_XKB_MAP_PART_KEY_SYMS | XCB_XKB_MAP_PART_MODIFIER_MAP;
    xcb_xkb_select_events(connection, XCB_XKB_ID_USE_CORE_KBD, events, 0, events, parts, parts, nullptr);
    return connection.firstEvent(xcb_xkb_id);
}

} // namespace vantry::xcb
