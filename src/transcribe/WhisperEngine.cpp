#include "transcribe/WhisperEngine.h"

#include "base/Log.h"

#include <QCryptographicHash>

#include <algorithm>
#include <array>
#include <fstream>
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

/// In lower-case hexadecimal digits, of as much as can be read. Nothing when it cannot be opened, or when cancelled.
std::optional<std::string> sha256Of(const fs::path& file, const std::stop_token& cancel)
{
    std::ifstream bytes(file, std::ios::binary);
    if (!bytes)
        return std::nullopt;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    std::vector<char> piece(1 << 20);
    while (bytes && !cancel.stop_requested()) {
        bytes.read(piece.data(), static_cast<std::streamsize>(piece.size()));
        hash.addData(QByteArrayView(piece.data(), bytes.gcount()));
    }
    if (cancel.stop_requested())
        return std::nullopt;
    return hash.result().toHex().toStdString();
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
    // All of it was checked when it was fetched, and is again when it fails.
    std::error_code ignored;
    if (fs::is_regular_file(file(), ignored) && fs::file_size(file(), ignored) == static_cast<std::uintmax_t>(m_model.bytes))
        return std::nullopt;
    return m_model;
}

bool WhisperEngine::discardDamagedModel(const std::stop_token& cancel) const
{
    const auto sha256 = sha256Of(file(), cancel);
    if (!sha256 || *sha256 == m_model.sha256)
        return false;
    qCWarning(logTranscribe) << "The speech model is damaged:" << file().c_str();
    std::error_code ignored;
    return fs::remove(file(), ignored);
}

std::vector<std::string> WhisperEngine::command(const std::string& language) const
{
    return { "whisper", file().string(), std::string(ownNameOf(language)) };
}

} // namespace vantry
