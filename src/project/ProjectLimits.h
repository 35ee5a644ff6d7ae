#pragma once

#include <cstddef>
#include <string_view>

namespace vantry {

// What a project file must keep to, so that a damaged or hostile one can neither fill the memory nor lead out of its folder. The
// encoder keeps to the same, so what was written can be read.

/// In bytes. Hours of speech and thousands of overlays fit many times.
inline constexpr std::size_t largestProjectFile = 64 << 20;
inline constexpr auto tooLargeText = "larger than 64 MB";

/// Objects, lists, texts, numbers, all together.
inline constexpr std::size_t mostProjectValues = 1'000'000;

/// Objects and lists inside each other; a project needs six.
inline constexpr int deepestProjectValue = 32;

/// Names a file in the folder itself, wherever that folder is.
constexpr bool isPlainFileName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos
        && name.find('\0') == std::string_view::npos;
}

} // namespace vantry
