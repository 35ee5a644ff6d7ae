#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// What the program was asked to do when it was started.
struct CommandLine {
    bool help = false;
    bool version = false;
    bool selftest = false;
    std::optional<std::filesystem::path> open;
    std::optional<std::filesystem::path> retakeCancel;

    /// Seconds, as they were written: what is no number has a meaning too.
    std::optional<std::string> autorecord;
    std::optional<std::filesystem::path> exportFile;

    /// Pixels; nothing for the one of the settings.
    std::optional<int> height;
};

/// The arguments without the program's name. Throws an AppError with a hint.
CommandLine parseCommandLine(const std::vector<std::string>& arguments);

/// What "--help" prints.
std::string commandLineHelp();

/// How long an automatic recording waits after it asked for the start before it stops: the countdown included.
double autorecordWait(const std::string& seconds);

} // namespace vantry
