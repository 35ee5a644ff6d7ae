#include "project/JsonValue.h"

#include "base/AppError.h"

#include <cmath>

namespace vantry {

JsonValue JsonValue::member(std::string_view key) const
{
    if (!m_json.is_object())
        fail("expected an object");
    const auto found = m_json.find(key);
    if (found == m_json.end())
        JsonValue(m_json, *this, key, 0).fail("missing");
    return { *found, *this, key, 0 };
}

std::optional<JsonValue> JsonValue::optionalMember(std::string_view key) const
{
    if (!m_json.is_object())
        fail("expected an object");
    const auto found = m_json.find(key);
    if (found == m_json.end() || found->is_null())
        return std::nullopt;
    return JsonValue(*found, *this, key, 0);
}

std::size_t JsonValue::size() const
{
    if (!m_json.is_array())
        fail("expected a list");
    return m_json.size();
}

double JsonValue::number() const
{
    if (!m_json.is_number())
        fail("expected a number");
    return m_json.get<double>();
}

bool JsonValue::boolean() const
{
    if (!m_json.is_boolean())
        fail("expected true or false");
    return m_json.get<bool>();
}

const std::string& JsonValue::text() const
{
    if (!m_json.is_string())
        fail("expected a text");
    return m_json.get_ref<const std::string&>();
}

bool JsonValue::isFinite() const
{
    return !m_json.is_number() || std::isfinite(m_json.get<double>());
}

void JsonValue::forEach(const std::function<void(const JsonValue&)>& visit) const
{
    visit(*this);
    if (m_json.is_object()) {
        for (const auto& [key, value] : m_json.get_ref<const Json::object_t&>())
            JsonValue(value, *this, key, 0).forEach(visit);
    } else if (m_json.is_array()) {
        for (std::size_t position = 0; position < m_json.size(); ++position)
            element(position).forEach(visit);
    }
}

void JsonValue::fail(const std::string& what) const
{
    throw AppError(m_parent ? place() + ": " + what : what);
}

std::string JsonValue::place() const
{
    if (!m_parent)
        return {};
    const auto parent = m_parent->place();
    if (m_key.empty())
        return parent + '[' + std::to_string(m_position) + ']';
    return parent.empty() ? std::string(m_key) : parent + '.' + std::string(m_key);
}

} // namespace vantry
