#include "project/JsonDocument.h"

#include "base/AppError.h"
#include "project/ProjectLimits.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <string>

namespace vantry {

namespace {

using Json = nlohmann::json;

std::string placeOf(std::size_t position, std::string_view bytes)
{
    const auto before = bytes.substr(0, position);
    const auto line = std::ranges::count(before, '\n') + 1;
    const auto column = before.size() - (before.rfind('\n') + 1) + 1;
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

/// Reads through a document without building it, and stops at the first thing that is wrong with it.
class Inspection : public Json::json_sax_t {
public:
    explicit Inspection(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    bool null() override { return count(); }
    bool boolean(bool) override { return count(); }
    bool number_integer(number_integer_t) override { return count(); }
    bool number_unsigned(number_unsigned_t) override { return count(); }
    bool number_float(number_float_t, const string_t&) override { return count(); }
    bool string(string_t&) override { return count(); }
    bool binary(binary_t&) override { return count(); }
    bool key(string_t&) override { return true; }
    bool start_object(std::size_t) override { return enter(); }
    bool end_object() override { return leave(); }
    bool start_array(std::size_t) override { return enter(); }
    bool end_array() override { return leave(); }

    bool parse_error(std::size_t position, const std::string&, const Json::exception& error) override
    {
        // `position` counts the bytes that were read, up to the one that is wrong.
        const auto place = placeOf(position > 0 ? position - 1 : 0, m_bytes);
        const bool isNumberTooLarge = dynamic_cast<const Json::out_of_range*>(&error);
        throw AppError(place + (isNumberTooLarge ? ": the number is too large" : ": not valid JSON"));
    }

private:
    bool count()
    {
        if (++m_values > mostProjectValues)
            throw AppError("too many values");
        return true;
    }

    bool enter()
    {
        if (++m_depth > deepestProjectValue)
            throw AppError("nested too deeply");
        return count();
    }

    bool leave()
    {
        --m_depth;
        return true;
    }

    const std::string_view m_bytes;
    std::size_t m_values = 0;
    int m_depth = 0;
};

} // namespace

Json parseJson(std::string_view bytes)
{
    if (bytes.size() > largestProjectFile)
        throw AppError(tooLargeText);
    // The parser would take a NUL for the end.
    if (const auto nul = bytes.find('\0'); nul != std::string_view::npos)
        throw AppError(placeOf(nul, bytes) + ": not valid JSON");
    Inspection inspection(bytes);
    Json::sax_parse(bytes, &inspection);
    return Json::parse(bytes);
}

} // namespace vantry
