#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vantry {

/// The identity of a clip or an overlay.
class Uuid {
public:
    /// All zero.
    Uuid() = default;

    /// A new random one.
    static Uuid random();

    /// From 36 hexadecimal digits and hyphens in either case; nothing for any other text.
    static std::optional<Uuid> parse(std::string_view text);

    /// Upper-case hexadecimal digits in groups of 8-4-4-4-12.
    std::string text() const;

    auto operator<=>(const Uuid&) const = default;

private:
    std::array<std::uint8_t, 16> m_bytes{};
};

} // namespace vantry
