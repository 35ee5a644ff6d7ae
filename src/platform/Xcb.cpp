#include "platform/Xcb.h"

#include "base/AppError.h"

namespace vantry::xcb {

namespace {

/// The screen that the connection's name asked for ("host:0.1" means the second one).
const xcb_screen_t* screenAt(xcb_connection_t* connection, int number)
{
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 1 && number > 0; --number)
        xcb_screen_next(&screens);
    return screens.data;
}

} // namespace

Connection::Connection(const char* server)
{
    int number = 0;
    m_connection = xcb_connect(server, &number);
    if (isLost()) {
        xcb_disconnect(m_connection);
        throw AppError("There is no display server to connect to");
    }
    m_screen = screenAt(m_connection, number);
}

Connection::~Connection()
{
    xcb_disconnect(m_connection);
}

Event Connection::nextEvent() const
{
    Event event;
    do {
        event.reset(xcb_poll_for_event(m_connection));
    } while (event && event->response_type == 0);
    return event;
}

xcb_atom_t Connection::atom(std::string_view name) const
{
    const auto cookie = xcb_intern_atom(m_connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = receive(xcb_intern_atom_reply, cookie);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

bool Connection::has(xcb_extension_t& extension) const
{
    const auto* data = xcb_get_extension_data(m_connection, &extension);
    return data && data->present;
}

int Connection::firstEvent(xcb_extension_t& extension) const
{
    const auto* data = xcb_get_extension_data(m_connection, &extension);
    if (!data)
        throw AppError("The connection to the display server was lost");
    return data->first_event;
}

} // namespace vantry::xcb
