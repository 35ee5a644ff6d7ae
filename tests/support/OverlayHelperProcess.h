#pragma once

#include "support/Command.h"

#include <string>

#include <unistd.h>

namespace vantry::test {

/// The running overlay helper of this process, or 0.
inline pid_t overlayHelperProcess()
{
    const auto found = runCommand("pgrep -x vantry-overlays -P " + std::to_string(getpid()) + " || true");
    return found.empty() ? 0 : std::stoi(found);
}

} // namespace vantry::test
