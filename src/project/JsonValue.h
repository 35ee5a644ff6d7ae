#pragma once

#include <nlohmann/json.hpp>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace vantry {

using Json = nlohmann::json;

/// One value of a JSON document and its place in it, for reading without conversions: every read of another type throws an AppError
/// that names the place. Refers to the document and to the value it was taken from, so it lives on the stack only.
class JsonValue {
public:
    /// What comes of a function, or a read below, that is given a JsonValue.
    template <typename Decode>
    using Decoded = std::decay_t<std::invoke_result_t<Decode, const JsonValue&>>;

    explicit JsonValue(const Json& document)
        : m_json(document)
    {
    }

    /// A value of an object; both throw where this is none, `member` also where the key is missing.
    JsonValue member(std::string_view key) const;
    /// Nothing where the key is missing or its value is null.
    std::optional<JsonValue> optionalMember(std::string_view key) const;

    /// What `decode` makes of that.
    template <typename Decode>
    auto optionalMember(std::string_view key, Decode decode) const -> std::optional<Decoded<Decode>>;

    /// The number of values in an array.
    std::size_t size() const;
    JsonValue element(std::size_t position) const { return { m_json[position], *this, {}, position }; }

    /// What `decode` makes of every value of an array.
    template <typename Decode>
    auto list(Decode decode) const -> std::vector<Decoded<Decode>>;

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

template <typename Decode>
auto JsonValue::optionalMember(std::string_view key, Decode decode) const -> std::optional<Decoded<Decode>>
{
    const auto value = optionalMember(key);
    return value ? std::optional(Decoded<Decode>(std::invoke(decode, *value))) : std::nullopt;
}

template <typename Decode>
auto JsonValue::list(Decode decode) const -> std::vector<Decoded<Decode>>
{
    std::vector<Decoded<Decode>> list;
    list.reserve(size());
    for (std::size_t position = 0; position < size(); ++position)
        list.push_back(std::invoke(decode, element(position)));
    return list;
}

} // namespace vantry
