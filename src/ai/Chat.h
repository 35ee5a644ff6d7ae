#pragma once

#include "base/AppError.h"
#include "project/JsonDocument.h"
#include "project/JsonValue.h"

#include <string>
#include <string_view>

namespace vantry::AI {

// The service's format: what is sent, and what is looked for in the answer.

/// The body of a request for one JSON object. Throws AppError when a text is not UTF-8.
std::string chatRequest(const std::string& model, const std::string& system, const std::string& user);

/// The text from the first "{" to the last "}" in what the assistant says in the body of an answer. Throws AppError when the body
/// is no answer, and when there is no such text.
std::string jsonObjectIn(std::string_view body);

/// What `decode` makes of an answer, or of a part of one. Throws AppError that says so when it is none.
template <typename Decode>
auto decodeAnswer(std::string_view json, Decode decode)
{
    try {
        const auto document = parseJson(json);
        return decode(JsonValue(document));
    } catch (const AppError& error) {
        throw AppError(std::string("The AI's answer is not what was asked for: ") + error.what());
    }
}

} // namespace vantry::AI
