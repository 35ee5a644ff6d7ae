#pragma once

#include "platform/Xcb.h"

#include <cstdint>
#include <string>
#include <vector>

namespace vantry {

/// The numbers of a window's property, as many as there are up to some thousands. Empty when it has none.
std::vector<std::uint32_t> windowNumbers(const xcb::Connection& connection, xcb_window_t window, xcb_atom_t property);

/// The bytes of a window's property, as many as there are up to some thousands.
std::string windowText(const xcb::Connection& connection, xcb_window_t window, xcb_atom_t property);

} // namespace vantry
