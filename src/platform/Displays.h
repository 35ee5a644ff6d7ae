#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vantry {

namespace xcb {
class Connection;
}

/// One screen of the desktop. Position and size are pixels of the whole desktop.
struct Display {
    std::uint32_t id = 0; ///< The same after a restart, made from what the monitor says of itself; never 0.
    std::string name{}; ///< For the user: the monitor's name, else its connector's.
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const Display&) const = default;
};

/// The displays of the environment's X server, the primary one first. Throws AppError when there is no server.
std::vector<Display> displays();

/// The same through a connection that is there already. Empty when it is lost.
std::vector<Display> displays(const xcb::Connection&);

} // namespace vantry
