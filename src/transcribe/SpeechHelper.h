#pragma once

#include "project/Project.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace vantry {

class SpeechFile;

/// Lets a helper program recognise speech. The recognisers are large, take long and end the process they are in when they fail: in
/// one of their own they can be stopped at any moment, and take nothing along.
struct SpeechHelper {
    std::filesystem::path program = defaultProgram();

    /// A helper that says nothing for so long hangs.
    std::chrono::milliseconds patience = std::chrono::minutes(5);

    static std::filesystem::path defaultProgram();

    /// What is spoken, in order; nothing when cancelled. `command` says how to recognise it. The calling thread waits. Throws
    /// AppError.
    std::optional<std::vector<Line>> recognise(
        const std::vector<std::string>& command, const SpeechFile& speech, const std::stop_token& cancel) const;
};

} // namespace vantry
