#include "MouseButton.h"

#include <sys/uio.h>
#include <xcb/xcbext.h>

namespace vantry::bench {

namespace {

xcb_extension_t testing{ "XTEST", 0 };

/// The extension's request for an event, as its protocol has it.
struct FakeInput {
    std::uint8_t major = 0, minor = 0;
    std::uint16_t length = 0;
    std::uint8_t event = 0, button = 1;
    std::uint16_t unused = 0;
    std::uint32_t delay = 0, root = 0;
    std::uint32_t unusedToo[2]{};
    std::int16_t x = 0, y = 0;
    std::uint8_t unusedThree[7]{};
    std::uint8_t device = 0;
};
static_assert(sizeof(FakeInput) == 36);

} // namespace

void MouseButton::send(std::uint8_t event) const
{
    constexpr std::uint8_t fakeInput = 2;
    FakeInput request{ .event = event, .root = m_connection.root() };
    // The library wants room before the parts for its own.
    iovec parts[4]{ {}, {}, { &request, sizeof request }, {} };
    const xcb_protocol_request_t protocol{ .count = 2, .ext = &testing, .opcode = fakeInput, .isvoid = 1 };
    xcb_send_request(m_connection, 0, parts + 2, &protocol);
    xcb_flush(m_connection);
}

} // namespace vantry::bench
