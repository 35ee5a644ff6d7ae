#pragma once

#include "project/Project.h"

#include <string>
#include <string_view>
#include <variant>

namespace vantry {

// What the helper that recognises speech says on its standard output: a line of JSON for each line of speech as soon as it has it,
// or for what it failed of. A line without text says that it still works. Then it ends, with exit status 0 when it has come to the
// end.

struct SpeechFailure {
    std::string text;

    bool operator==(const SpeechFailure&) const = default;
};

using SpeechNews = std::variant<Line, SpeechFailure>;

/// With the line feed. What is not UTF-8 in a text is replaced.
std::string encode(const SpeechNews& news);

/// Without the line feed. Throws AppError on anything that `encode` does not write.
SpeechNews decodeSpeechNews(std::string_view text);

} // namespace vantry
