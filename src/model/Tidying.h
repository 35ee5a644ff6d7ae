#pragma once

#include <filesystem>
#include <thread>
#include <vector>

namespace vantry {

/// Removes what programs left half-written that were killed: projects that were being saved, videos that were being exported. On a
/// thread of its own, which may wait for slow disks.
class Tidying {
public:
    /// Looks through the projects' folders and the one where videos go.
    void start(std::vector<std::filesystem::path> projects, std::filesystem::path videos);

private:
    std::jthread m_thread;
};

} // namespace vantry
