#include "platform/X11Keys.h"

#include "platform/Keyboard.h"

#include <array>
#include <utility>

namespace vantry {

namespace {

constexpr std::uint16_t modifiers = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1;
constexpr std::uint16_t allModifiers = 0xFF;
constexpr xcb_keysym_t numLockSign = 0xFF7F;
constexpr xcb_keycode_t firstPosition = 8; ///< Linux counts its keys from 0, X from here.

/// "a", "a and b", "a, b and c".
std::string listed(const std::vector<std::string>& names)
{
    std::string list;
    for (std::size_t i = 0; i < names.size(); ++i)
        list += (i == 0 ? "" : i + 1 == names.size() ? " and " : ", ") + names[i];
    return list;
}

} // namespace

X11Keys::X11Keys(Handlers handlers)
    : m_handlers(std::move(handlers))
    , m_keyboardChange(xcb::watchKeyboard(m_connection))
    , m_notifier(xcb_get_file_descriptor(m_connection), QSocketNotifier::Read)
{
    QObject::connect(&m_notifier, &QSocketNotifier::activated, &m_notifier, [this] { readEvents(); });
}

void X11Keys::grab(std::vector<GlobalKey> keys)
{
    m_keys = std::move(keys);
    grabAll();
    // What came while the server was asked waits in our own memory, of which the notifier knows nothing.
    readEvents();
}

void X11Keys::grabAll()
{
    for (const auto& [key, id] : std::exchange(m_grabbed, {}))
        release({ key });
    const xcb::Keyboard keyboard(m_connection);
    m_numLock = keyboard.modifiersOf(numLockSign);
    std::vector<std::string> taken;
    for (const GlobalKey& key : m_keys) {
        const auto codes = keysOf(key, keyboard);
        if (!grab(codes)) {
            // Half a key, which depends on the locks, is worse than none.
            release(codes);
            taken.push_back(key.name);
            continue;
        }
        for (const xcb_keycode_t code : codes)
            m_grabbed[code] = key.id;
    }
    xcb_flush(m_connection);
    if (taken.empty() && std::exchange(m_areSomeTaken, false))
        m_handlers.onTrouble({});
    m_areSomeTaken = !taken.empty();
    if (m_areSomeTaken)
        m_handlers.onTrouble(listed(taken) + (taken.size() == 1 ? " is" : " are") + " used by another program");
}

std::vector<xcb_keycode_t> X11Keys::keysOf(const GlobalKey& key, const xcb::Keyboard& keyboard) const
{
    auto codes = keyboard.keysFor(static_cast<xcb_keysym_t>(key.sign));
    if (codes.empty())
        codes.push_back(static_cast<xcb_keycode_t>(key.position + firstPosition));
    return codes;
}

/// False when another program has one of them.
bool X11Keys::grab(const std::vector<xcb_keycode_t>& codes) const
{
    const std::array<std::uint16_t, 4> lockStates{ 0, XCB_MOD_MASK_LOCK, m_numLock,
        static_cast<std::uint16_t>(m_numLock | XCB_MOD_MASK_LOCK) };
    for (const xcb_keycode_t code : codes) {
        for (const std::uint16_t locks : lockStates) {
            const auto grabbed = xcb_grab_key_checked(m_connection, 0, m_connection.root(),
                static_cast<std::uint16_t>(modifiers | locks), code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
            if (m_connection.check(grabbed))
                return false;
        }
    }
    return true;
}

void X11Keys::release(const std::vector<xcb_keycode_t>& codes) const
{
    for (const xcb_keycode_t code : codes)
        xcb_ungrab_key(m_connection, code, m_connection.root(), XCB_MOD_MASK_ANY);
}

void X11Keys::readEvents()
{
    while (const auto event = m_connection.nextEvent())
        handle(*event);
    if (m_connection.isLost())
        m_notifier.setEnabled(false);
    // A changed keyboard is reported key by key.
    while (std::exchange(m_keyboardChanged, false)) {
        grabAll();
        while (const auto event = m_connection.nextEvent())
            handle(*event);
    }
    for (const std::uint32_t id : std::exchange(m_pressed, {}))
        m_handlers.onPressed(id);
}

void X11Keys::handle(const xcb_generic_event_t& event)
{
    const int type = event.response_type & 0x7F;
    if (type == XCB_KEY_PRESS)
        press(reinterpret_cast<const xcb_key_press_event_t&>(event));
    else if (type == XCB_KEY_RELEASE)
        letGo(reinterpret_cast<const xcb_key_release_event_t&>(event).detail);
    else if (type == XCB_MAPPING_NOTIFY || (m_keyboardChange != 0 && type == m_keyboardChange))
        m_keyboardChanged = true;
}

/// As long as the first of our keys is held, and no longer, the server sends us all others too.
void X11Keys::press(const xcb_key_press_event_t& event)
{
    const auto key = m_grabbed.find(event.detail);
    const bool isFirst = m_held.insert(event.detail).second;
    const unsigned locks = m_numLock | XCB_MOD_MASK_LOCK;
    if (isFirst && key != m_grabbed.end() && (event.state & allModifiers & ~locks) == modifiers)
        m_pressed.push_back(key->second);
}

void X11Keys::letGo(xcb_keycode_t key)
{
    if (m_grabbed.contains(key))
        m_held.clear();
}

} // namespace vantry
