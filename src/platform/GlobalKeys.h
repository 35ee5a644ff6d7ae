#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace vantry {

/// A key that is pressed with Control and Alt held.
struct GlobalKey {
    std::uint32_t id = 0; ///< Tells the keys apart; whoever grabs them chooses it.
    std::string name{}; ///< As the user knows it: "⌃⌥R".
    char sign = 0; ///< What the key says, in lower case.
    std::uint8_t position = 0; ///< Linux' code of the key that says so on an American keyboard, for keyboards where none does.
};

/// Keys that come to this program whichever program has the keyboard. They are given back with the object. Belongs to the main
/// thread and lives from its event loop.
class GlobalKeys {
public:
    struct Handlers {
        /// Once for each press, however long the key is held. Called on the main thread.
        std::function<void(std::uint32_t id)> onPressed;

        /// Says to the user which keys cannot be had and why; the others work. Again when the keyboard has
        /// changed, with an empty text when all of them can be had now.
        std::function<void(const std::string& text)> onTrouble;
    };

    virtual ~GlobalKeys() = default;

    /// To be called once.
    virtual void grab(std::vector<GlobalKey>) = 0;
};

/// What this desktop has for it. Where it has nothing all keys are trouble.
std::unique_ptr<GlobalKeys> makeGlobalKeys(GlobalKeys::Handlers);

} // namespace vantry
