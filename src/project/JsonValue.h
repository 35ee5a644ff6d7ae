#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vantry {

using Json = nlohmann::json;

/// One value of a JSON document and its place in it, for reading without conversions: every read of another type throws an AppError
/// that names the place. Refers to the document and to the value it was taken from, so it lives on the stack only.
class JsonValue {
public:
    explicit JsonValue(const Json& document)
        : m_json(document)
    {
    }

    /// A value of an object; both throw where this is none, `member` also where the key is missing.
    JsonValue member(std::string_view key) const;
    /// Nothing where the key is missing or its value is null.
    std::optional<JsonValue> optionalMember(std::string_view key) const;

    /// The number of values in an array.
    std::size_t size() const;
    JsonValue element(std::size_t position) const { return { m_json[position], *this, {}, position }; }

    double number() const;
    bool boolean() const;
    const std::string& text() const;

    /// False for infinity and for what is not a number at all, which a document in memory can hold but a file cannot.
    bool isFinite() const;

    /// Visits this value and then all within it.
    void forEach(const std::function<void(const JsonValue&)>& visit) const;

    /// Throws: "clips[2].keep: " and what is wrong.
    [[noreturn]] void fail(const std::string& what) const;

private:
    JsonValue(const Json& json, const JsonValue& parent, std::string_view key, std::size_t position)
        : m_json(json)
        , m_parent(&parent)
        , m_key(key)
        , m_position(position)
    {
    }

    std::string place() const;

    const Json& m_json;
    const JsonValue* m_parent = nullptr;
    std::string_view m_key; ///< Empty in an array.
    std::size_t m_position = 0;
};

} // namespace vantry
