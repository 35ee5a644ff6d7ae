#pragma once

#include "base/Descriptor.h"

#include <poll.h>
#include <string>

namespace vantry::test {

/// A server on this machine that lets everybody connect, and never says a word. Whoever waits for one gets an error once it is
/// gone.
class SilentServer {
public:
    /// Throws std::runtime_error.
    SilentServer();

    /// "http://127.0.0.1:" and its port.
    const std::string& url() const { return m_url; }

    /// Whether somebody has come, or comes within `milliseconds`.
    bool isAsked(int milliseconds = 0) const
    {
        pollfd waiting{ m_socket.number(), POLLIN, 0 };
        return poll(&waiting, 1, milliseconds) > 0;
    }

private:
    const Descriptor m_socket;
    std::string m_url;
};

} // namespace vantry::test
