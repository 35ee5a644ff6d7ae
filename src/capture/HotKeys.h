#pragma once

#include "platform/GlobalKeys.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <memory>

namespace vantry {

/// What the presenter can ask for from inside any program, with the ids under which presses are delivered.
enum class HotKey : std::uint32_t {
    StartOrStop = 1,
    GoBack = 2,
    LayoutCamera = 3,
    LayoutBubble = 4,
    LayoutScreen = 5,
    NextCorner = 6,
};

/// The keys that work in every program, all with Control and Alt held: R, B, 1, 2, 3 and C. Knows only which key was pressed, not
/// what it does. Belongs to the main thread; the keys are given back with the object.
class HotKeys {
public:
    using Handler = std::function<void(std::uint32_t id)>;
    using TroubleHandler = std::function<void(const QString& text)>;

    /// `onTrouble` is told, for the user, which keys cannot be had and why; the others work. An empty text: now
    /// all of them can.
    explicit HotKeys(TroubleHandler onTrouble);
    ~HotKeys();

    /// Takes hold of the keys. The handler is called on the main thread, once for each press; a second call replaces it.
    void install(Handler);

private:
    const TroubleHandler m_onTrouble;
    Handler m_handler;
    std::unique_ptr<GlobalKeys> m_keys;
};

} // namespace vantry
