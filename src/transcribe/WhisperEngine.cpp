#include "transcribe/WhisperEngine.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace vantry {

namespace fs = std::filesystem;

namespace {

/// What the models were trained on, in their order.
constexpr std::array<std::string_view, 99> languages{ "en", "zh", "de", "es", "ru", "ko", "fr", "ja", "pt", "tr", "pl", "ca", "nl",
    "ar", "sv", "it", "id", "hi", "fi", "vi", "he", "uk", "el", "ms", "cs", "ro", "da", "hu", "ta", "no", "th", "ur", "hr", "bg",
    "lt", "la", "mi", "ml", "cy", "sk", "te", "fa", "lv", "bn", "sr", "az", "sl", "kn", "et", "mk", "br", "eu", "is", "hy", "ne",
    "mn", "bs", "kk", "sq", "sw", "gl", "mr", "pa", "si", "km", "sn", "yo", "so", "af", "oc", "ka", "be", "tg", "sd", "gu", "am",
    "yi", "lo", "uz", "fo", "ht", "ps", "tk", "nn", "mt", "sa", "lb", "my", "bo", "tl", "mg", "as", "tt", "haw", "ln", "ha", "ba",
    "jw", "su" };

/// Languages that it knows by another name than locales do.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> otherNames{ { { "nb", "no" }, { "fil", "tl" },
    { "jv", "jw" } } };

std::string_view ownNameOf(std::string_view language)
{
    const auto other = std::ranges::find(otherNames, language, &decltype(otherNames)::value_type::first);
    return other == otherNames.end() ? language : other->second;
}

/// Its arithmetic is built for processors of the last ten years.
bool isProcessorFit()
{
#ifdef __x86_64__
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && __builtin_cpu_supports("bmi2");
#else
    return true;
#endif
}

} // namespace

WhisperEngine::WhisperEngine(fs::path folder, SpeechModel model)
    : m_folder(std::move(folder))
    , m_model(std::move(model))
{
}

bool WhisperEngine::supports(const std::string& language) const
{
    return isProcessorFit() && std::ranges::find(languages, ownNameOf(language)) != languages.end();
}

std::optional<SpeechModel> WhisperEngine::missingModel() const
{
    // It was checked when it was fetched.
    std::error_code ignored;
    if (fs::is_regular_file(file(), ignored) && fs::file_size(file(), ignored) == static_cast<std::uintmax_t>(m_model.bytes))
        return std::nullopt;
    return m_model;
}

std::vector<std::string> WhisperEngine::command(const std::string& language) const
{
    return { "whisper", file().string(), std::string(ownNameOf(language)) };
}

} // namespace vantry
