#include "transcribe/SpeechEngine.h"

#include <algorithm>

namespace vantry {

std::string languageOf(const std::string& locale)
{
    std::string language = locale.substr(0, locale.find_first_of("-_.@"));
    std::ranges::transform(
        language, language.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 'a' - 'A') : c; });
    return language;
}

} // namespace vantry
