#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace vantry {

/// Hears of every press of a mouse button on the desktop, whatever program it is meant for, without standing in its way. Belongs to
/// one thread with an event loop.
class ButtonPresses {
public:
    /// `topLevel`: the X server's number of the window at the pointer, a child of the root, or 0.
    using Handler = std::function<void(std::uint32_t topLevel)>;

    /// Throws AppError when there is no X server, or it does not tell.
    explicit ButtonPresses(Handler);
    ~ButtonPresses();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
