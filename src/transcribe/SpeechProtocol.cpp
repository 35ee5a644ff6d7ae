#include "transcribe/SpeechProtocol.h"

#include "base/AppError.h"

#include <nlohmann/json.hpp>

namespace vantry {

using nlohmann::json;

namespace {

json toJson(const Line& line)
{
    return { { "start", line.start }, { "end", line.end }, { "text", line.text } };
}

json toJson(const SpeechFailure& failure)
{
    return { { "failure", failure.text } };
}

} // namespace

std::string encode(const SpeechNews& news)
{
    const json document = std::visit([](const auto& said) { return toJson(said); }, news);
    return document.dump(-1, ' ', false, json::error_handler_t::replace) + '\n';
}

SpeechNews decodeSpeechNews(std::string_view text)
{
    try {
        const json document = json::parse(text);
        if (document.contains("failure"))
            return SpeechFailure{ document.at("failure").get<std::string>() };
        return Line{ .start = document.at("start").get<double>(),
            .end = document.at("end").get<double>(),
            .text = document.at("text").get<std::string>() };
    } catch (const json::exception&) {
        throw AppError("The speech recogniser answered nonsense");
    }
}

} // namespace vantry
