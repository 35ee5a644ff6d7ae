#pragma once

#include "transcribe/SpeechModel.h"

#include <chrono>
#include <functional>
#include <stop_token>

namespace vantry {

/// How getting a model ended.
enum class Fetched {
    Complete,
    Cancelled,
    Unreachable, ///< There is no way to the server.
};

struct ModelDownload {
    SpeechModel model;
    std::filesystem::path folder;
    std::string source;

    /// A server that says nothing for so long is given up.
    std::chrono::milliseconds patience{};

    /// Receives how much of it is there, from 0 to 1.
    std::function<void(double fraction)> onProgress{};
};

/// Gets the model and checks it; only then it has its name in the folder. What was received before it broke off is kept, and the
/// next attempt goes on from there. The calling thread waits, and needs no event loop. Throws AppError when it cannot be had,
/// stored, or is not what was published.
Fetched fetch(const ModelDownload& download, const std::stop_token& cancel);

} // namespace vantry
