#pragma once

#include "project/Project.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

namespace vantry {

/// The names under which the values of an enumeration are stored, in the order of the values.
template <typename Enum>
inline constexpr std::array<std::string_view, 0> enumNames{};
template <>
inline constexpr std::array<std::string_view, 3> enumNames<Layout>{ "camera", "bubble", "screen" };
template <>
inline constexpr std::array<std::string_view, 4> enumNames<Corner>{ "topLeft", "topRight", "bottomRight", "bottomLeft" };
template <>
inline constexpr std::array<std::string_view, 3> enumNames<OverlayKind>{ "bubble", "text", "lowerThird" };

template <typename Enum>
constexpr std::string_view nameOf(Enum value)
{
    return enumNames<Enum>.at(static_cast<std::size_t>(value));
}

/// The value with exactly this name; nothing for any other.
template <typename Enum>
constexpr std::optional<Enum> valueNamed(std::string_view name)
{
    const auto& names = enumNames<Enum>;
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? std::nullopt : std::optional(static_cast<Enum>(found - names.begin()));
}

} // namespace vantry
