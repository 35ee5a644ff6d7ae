#pragma once

#include <stdexcept>

namespace vantry {

/// A failure with the one text that a user sees. Thrown where it happens, caught once, where the user's action began.
class AppError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace vantry
