#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <type_traits>

namespace vantry::xcb {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

/// What the server sent: a reply, an event or an error. A null reply means that the server refused the request, most often because
/// its window is gone; nothing of that ends a connection.
template <typename Answer>
using Received = std::unique_ptr<Answer, Free>;
using Event = Received<xcb_generic_event_t>;

/// One connection to the X server, closed with the object. Belongs to one thread.
class Connection {
public:
    /// Connects to the named server, or to the one of the environment. Throws AppError when there is none.
    explicit Connection(const char* server = nullptr);
    ~Connection();

    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    operator xcb_connection_t*() const { return m_connection; }
    const xcb_screen_t& screen() const { return *m_screen; }
    xcb_window_t root() const { return m_screen->root; }

    /// The server closed the connection. It stays closed; replies are null and events do not come from then on.
    bool isLost() const { return xcb_connection_has_error(m_connection) != 0; }

    /// The reply to a request: `receive(xcb_get_geometry_reply, cookie)`.
    template <typename Reply, typename Cookie>
    [[nodiscard]] Received<Reply> receive(
        Reply* (*wait)(xcb_connection_t*, Cookie, xcb_generic_error_t**), std::type_identity_t<Cookie> cookie) const
    {
        return Received<Reply>(wait(m_connection, cookie, nullptr));
    }

    /// Null when a checked request succeeded, else what the server said.
    [[nodiscard]] Received<xcb_generic_error_t> check(xcb_void_cookie_t cookie) const
    {
        return Received<xcb_generic_error_t>(xcb_request_check(m_connection, cookie));
    }

    /// The next event that has arrived, without waiting. Errors of unchecked requests are passed over.
    [[nodiscard]] Event nextEvent() const;

    xcb_atom_t atom(std::string_view name) const;

    bool has(xcb_extension_t&) const;

    /// The number of an extension's first event. Ask as long as the server is there.
    int firstEvent(xcb_extension_t&) const;

private:
    xcb_connection_t* m_connection;
    const xcb_screen_t* m_screen = nullptr;
};

} // namespace vantry::xcb
