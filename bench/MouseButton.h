#pragma once

#include "platform/Xcb.h"

namespace vantry::bench {

/// The left button of the X server's mouse, where the pointer is.
class MouseButton {
public:
    /// Sent when this returns.
    void press() const { send(XCB_BUTTON_PRESS); }
    void release() const { send(XCB_BUTTON_RELEASE); }

private:
    void send(std::uint8_t event) const;

    const xcb::Connection m_connection;
};

} // namespace vantry::bench
