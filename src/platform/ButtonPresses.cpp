#include "platform/ButtonPresses.h"

#include "base/AppError.h"
#include "platform/Xcb.h"

#include <QSocketNotifier>

#include <optional>
#include <sys/uio.h>
#include <utility>
#include <xcb/xcbext.h>

namespace vantry {

namespace {

xcb_extension_t inputExtension{ "XInputExtension", 0 };

// The two requests of the extension that are wanted, as its protocol has them; the library fills in the first four bytes.

struct QueryVersion {
    static constexpr std::uint8_t opcode = 47;
    std::uint32_t head = 0;
    std::uint16_t major = 2;
    std::uint16_t minor = 1; ///< From here on raw events come whatever program holds the pointer.
};

struct SelectEvents {
    static constexpr std::uint8_t opcode = 46;
    std::uint32_t head = 0;
    std::uint32_t window = 0;
    std::uint16_t count = 1;
    std::uint16_t unused = 0;
    std::uint16_t device = 1; ///< All pointers and keyboards that the user sees as such.
    std::uint16_t words = 1;
    std::uint32_t mask = 0;
};

constexpr unsigned rawButtonPress = 15;

template <typename Request>
unsigned send(const xcb::Connection& connection, Request request, bool isVoid)
{
    // The library wants room of its own before the parts.
    iovec parts[4]{ {}, {}, { &request, sizeof request }, {} };
    const xcb_protocol_request_t protocol{
        .count = 2, .ext = &inputExtension, .opcode = Request::opcode, .isvoid = static_cast<std::uint8_t>(isVoid)
    };
    return xcb_send_request(connection, XCB_REQUEST_CHECKED, parts + 2, &protocol);
}

} // namespace

struct ButtonPresses::State {
    explicit State(Handler handler);
    void readEvents();
    bool isPress(const xcb_generic_event_t& event) const;
    std::uint32_t topLevelAtPointer() const;

    const Handler handler;
    const xcb::Connection connection;
    std::uint8_t extension = 0; ///< The number that its events carry.
    QSocketNotifier notifier{ xcb_get_file_descriptor(connection), QSocketNotifier::Read };
};

ButtonPresses::State::State(Handler handler)
    : handler(std::move(handler))
{
    if (!connection.has(inputExtension))
        throw AppError("The X server does not tell what the mouse does");
    extension = xcb_get_extension_data(connection, &inputExtension)->major_opcode;
    // The server takes the selection only from who has asked for the version.
    const xcb::Received<void> version(xcb_wait_for_reply(connection, send(connection, QueryVersion(), false), nullptr));
    const xcb_void_cookie_t selection{ send(
        connection, SelectEvents{ .window = connection.root(), .mask = 1u << rawButtonPress }, true) };
    if (!version || connection.check(selection))
        throw AppError("The X server does not tell what the mouse does");
    QObject::connect(&notifier, &QSocketNotifier::activated, &notifier, [this] { readEvents(); });
}

bool ButtonPresses::State::isPress(const xcb_generic_event_t& event) const
{
    if ((event.response_type & 0x7F) != XCB_GE_GENERIC)
        return false;
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    return generic.extension == extension && generic.event_type == rawButtonPress;
}

std::uint32_t ButtonPresses::State::topLevelAtPointer() const
{
    const auto pointer = connection.receive(xcb_query_pointer_reply, xcb_query_pointer(connection, connection.root()));
    return pointer ? pointer->child : 0;
}

/// What comes while the server is asked waits in our own memory, of which the notifier knows nothing.
void ButtonPresses::State::readEvents()
{
    std::optional<std::uint32_t> pressed;
    while (const auto event = connection.nextEvent())
        if (isPress(*event))
            pressed = topLevelAtPointer();
    if (connection.isLost())
        notifier.setEnabled(false);
    if (pressed)
        handler(*pressed);
}

ButtonPresses::ButtonPresses(Handler handler)
    : m_state(std::make_unique<State>(std::move(handler)))
{
}

ButtonPresses::~ButtonPresses() = default;

} // namespace vantry
