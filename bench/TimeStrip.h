#pragma once

#include "base/HostTime.h"

#include <filesystem>
#include <thread>
#include <vector>

namespace vantry::bench {

/// A window that shows the host's clock as black and white squares, a hundred times a second, so that every picture of the screen
/// tells when it was taken.
class TimeStrip {
public:
    TimeStrip();

    /// What a clip's screen shows, picture by picture. The clock in it starts anew every eleven minutes: `around` is a time near
    /// it.
    static std::vector<HostTime> readIn(const std::filesystem::path& clip, HostTime around);

private:
    std::jthread m_painter;
};

} // namespace vantry::bench
