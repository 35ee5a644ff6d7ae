#include "platform/WindowHints.h"

#include "base/AppError.h"
#include "platform/Xcb.h"

namespace vantry {

void leaveWithoutShadow(std::uint32_t window)
{
    try {
        const xcb::Connection connection;
        constexpr std::uint32_t none = 0;
        static_cast<void>(connection.check(xcb_change_property_checked(
            connection, XCB_PROP_MODE_REPLACE, window, connection.atom("_COMPTON_SHADOW"), XCB_ATOM_CARDINAL, 32, 1, &none)));
    } catch (const AppError&) {
    }
}

} // namespace vantry
