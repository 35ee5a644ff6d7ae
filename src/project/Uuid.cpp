#include "project/Uuid.h"

#include <random>

namespace vantry {

namespace {

constexpr std::size_t textLength = 36;

constexpr bool isHyphenAt(std::size_t position)
{
    return position == 8 || position == 13 || position == 18 || position == 23;
}

std::optional<int> hexadecimalDigit(char character)
{
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    return std::nullopt;
}

} // namespace

Uuid Uuid::random()
{
    std::random_device source;
    Uuid uuid;
    for (auto& byte : uuid.m_bytes)
        byte = static_cast<std::uint8_t>(source());
    // The marks of a random UUID: version 4, variant 1.
    uuid.m_bytes[6] = static_cast<std::uint8_t>((uuid.m_bytes[6] & 0x0f) | 0x40);
    uuid.m_bytes[8] = static_cast<std::uint8_t>((uuid.m_bytes[8] & 0x3f) | 0x80);
    return uuid;
}

std::optional<Uuid> Uuid::parse(std::string_view text)
{
    if (text.size() != textLength)
        return std::nullopt;
    Uuid uuid;
    std::size_t digits = 0;
    for (std::size_t position = 0; position < textLength; ++position) {
        if (isHyphenAt(position)) {
            if (text[position] != '-')
                return std::nullopt;
            continue;
        }
        const auto digit = hexadecimalDigit(text[position]);
        if (!digit)
            return std::nullopt;
        auto& byte = uuid.m_bytes[digits / 2];
        byte = static_cast<std::uint8_t>(byte << 4 | *digit);
        ++digits;
    }
    return uuid;
}

std::string Uuid::text() const
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(textLength);
    for (const auto byte : m_bytes) {
        if (isHyphenAt(text.size()))
            text += '-';
        text += digits[byte >> 4];
        text += digits[byte & 0x0f];
    }
    return text;
}

} // namespace vantry
