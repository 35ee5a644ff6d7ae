#pragma once

#include <type_traits>
#include <utility>

namespace vantry {

/// Assigns and says whether that made a difference, so that watchers hear of changes only.
template <typename Value>
[[nodiscard]] bool changeTo(Value& field, std::type_identity_t<Value> value)
{
    if (field == value)
        return false;
    field = std::move(value);
    return true;
}

} // namespace vantry
