#include "capture/HotKeys.h"

#include <linux/input-event-codes.h>
#include <utility>

namespace vantry {

namespace {

GlobalKey key(HotKey id, char sign, std::uint8_t position, const char* name)
{
    return { .id = static_cast<std::uint32_t>(id), .name = name, .sign = sign, .position = position };
}

std::vector<GlobalKey> allKeys()
{
    return {
        key(HotKey::StartOrStop, 'r', KEY_R, "⌃⌥R"),
        key(HotKey::GoBack, 'b', KEY_B, "⌃⌥B"),
        key(HotKey::LayoutCamera, '1', KEY_1, "⌃⌥1"),
        key(HotKey::LayoutBubble, '2', KEY_2, "⌃⌥2"),
        key(HotKey::LayoutScreen, '3', KEY_3, "⌃⌥3"),
        key(HotKey::NextCorner, 'c', KEY_C, "⌃⌥C"),
    };
}

} // namespace

HotKeys::HotKeys(TroubleHandler onTrouble)
    : m_onTrouble(std::move(onTrouble))
{
}

HotKeys::~HotKeys() = default;

void HotKeys::install(Handler handler)
{
    m_handler = std::move(handler);
    if (m_keys)
        return;
    m_keys = makeGlobalKeys({
        .onPressed = [this](std::uint32_t id) { m_handler(id); },
        .onTrouble = [this](const std::string& text) { m_onTrouble(QString::fromStdString(text)); },
    });
    m_keys->grab(allKeys());
}

} // namespace vantry
