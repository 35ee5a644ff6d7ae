#pragma once

#include "overlayhelper/FragmentRenderer.h"

#include <QSocketNotifier>

#include <cstddef>

namespace vantry {

/// Answers the application's requests, one after the other. Ends the event loop when the application has gone.
class RequestServer {
public:
    explicit RequestServer(int socket);

private:
    void announce();
    void serve();
    void reply(const Rendering&);
    bool read(void* target, std::size_t size) const;
    bool write(const void* source, std::size_t size) const;

    const int m_socket;
    FragmentRenderer m_renderer;
    QSocketNotifier m_readable;
};

} // namespace vantry
