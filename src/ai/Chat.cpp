#include "ai/Chat.h"

#include "ai/Characters.h"

#include <vector>

namespace vantry::AI {

namespace {

/// Of every choice, which must be a whole one though only the first counts.
std::vector<std::string> contentsOf(const JsonValue& reply)
{
    return reply.member("choices").list([](const JsonValue& choice) { return choice.member("message").member("content").text(); });
}

} // namespace

std::string chatRequest(const std::string& model, const std::string& system, const std::string& user)
{
    const Json request{
        { "model", model },
        { "messages", { { { "role", "system" }, { "content", system } }, { { "role", "user" }, { "content", user } } } },
        { "response_format", { { "type", "json_object" } } },
    };
    try {
        return request.dump();
    } catch (const Json::type_error&) {
        throw AppError("a text is not valid UTF-8");
    }
}

std::string jsonObjectIn(std::string_view body)
{
    const auto contents = decodeAnswer(body, contentsOf);
    const auto content = contents.empty() ? std::string() : contents.front();
    const auto first = content.find('{');
    const auto last = content.rfind('}');
    if (first == std::string::npos || last == std::string::npos || last < first) {
        constexpr std::size_t charactersShown = 200;
        throw AppError("AI gave no JSON: " + firstCharacters(content, charactersShown));
    }
    return content.substr(first, last + 1 - first);
}

} // namespace vantry::AI
