#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vantry {

// Characters as a reader counts them: an accent belongs to its letter, and a flag is one. Texts are UTF-8.

std::size_t characterCount(std::string_view text);

/// The first characters of a text, all of it when it has no more than `count`.
std::string firstCharacters(std::string_view text, std::size_t count);

/// The text in bytes that may be anything: each sequence that is not UTF-8, or is cut off at the end, becomes U+FFFD.
std::string readableText(std::string_view bytes);

/// Without white space and line breaks at both ends.
std::string trimmed(std::string_view text);

} // namespace vantry
