#include "speechhelper/WhisperRecogniser.h"

#include "base/AppError.h"
#include "media/Resampling.h"
#include "speechhelper/Margins.h"

#include <whisper.h>

#include <algorithm>
#include <optional>
#include <thread>
#include <utility>

namespace vantry {

namespace {

/// The model looks at half a minute at once, and takes as long for less.
constexpr SampleCount longestStretch(28LL * sampleRate);

/// More threads only wait for the memory.
constexpr unsigned mostThreads = 4;

whisper_context* makeContext(const std::filesystem::path& model)
{
    whisper_log_set([](ggml_log_level, const char*, void*) {}, nullptr);
    whisper_context_params settings = whisper_context_default_params();
    settings.use_gpu = false;
    return whisper_init_from_file_with_params(model.c_str(), settings);
}

whisper_full_params makeSettings(const std::string& language)
{
    whisper_full_params settings = whisper_full_default_params(WHISPER_SAMPLING_GREEDY);
    settings.n_threads = static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1U, mostThreads));
    settings.language = language.c_str();
    // A mistake in one stretch would lead the next one astray.
    settings.no_context = true;
    // No "[Music]" and the like.
    settings.suppress_nst = true;
    settings.print_progress = false;
    settings.print_timestamps = false;
    return settings;
}

/// As many of the phrases from `first` on as the model takes at once: the index after the last.
std::size_t endOfStretch(const std::vector<Phrase>& phrases, std::size_t first)
{
    auto end = first + 1;
    while (end < phrases.size() && phrases[end].end - phrases[first].start <= longestStretch)
        ++end;
    return end;
}

/// A line begins and ends where somebody speaks: the model's times are rough. Where nobody does it hears what it has often heard in
/// silence, and that is no line.
std::optional<Line> movedToSpeech(Line line, std::span<const Phrase> phrases)
{
    constexpr double roughness = 0.5; // seconds
    const auto isSpoken = [&](const Phrase& phrase) {
        return seconds(phrase.end) > line.start - roughness && seconds(phrase.start) < line.end + roughness;
    };
    const auto first = std::ranges::find_if(phrases, isSpoken);
    if (first == phrases.end())
        return std::nullopt;
    const auto last = std::ranges::find_if_not(first, phrases.end(), isSpoken) - 1;
    line.start = std::max(line.start, seconds(first->start));
    line.end = std::min(line.end, seconds(last->end));
    return line;
}

} // namespace

void WhisperRecogniser::Free::operator()(whisper_context* context) const
{
    whisper_free(context);
}

WhisperRecogniser::WhisperRecogniser(const std::filesystem::path& model, std::string language)
    : m_language(std::move(language))
    , m_context(makeContext(model))
{
    if (!m_context)
        throw AppError("The speech model " + model.filename().string() + " cannot be used");
}

WhisperRecogniser::~WhisperRecogniser() = default;

void WhisperRecogniser::recognise(const SpeechFile& speech, const std::vector<Phrase>& phrases, const LineSink& sink)
{
    for (std::size_t first = 0; first < phrases.size();) {
        const auto end = endOfStretch(phrases, first);
        const SampleCount start = withMargins(phrases, first).start;
        const auto samples = speech.read(start, withMargins(phrases, end - 1).end);
        const auto spoken = std::span(phrases).subspan(first, end - first);
        for (Line& line : listen(resampled(samples, WHISPER_SAMPLE_RATE))) {
            line.start += seconds(start);
            line.end += seconds(start);
            if (auto moved = movedToSpeech(std::move(line), spoken))
                sink(*std::move(moved));
        }
        sink({}); // It still works, whatever was heard.
        first = end;
    }
}

/// In seconds of what is listened to.
std::vector<Line> WhisperRecogniser::listen(const std::vector<float>& samples)
{
    if (whisper_full(m_context.get(), makeSettings(m_language), samples.data(), static_cast<int>(samples.size())) != 0)
        throw AppError("The speech recogniser failed");
    std::vector<Line> lines;
    for (int i = 0; i < whisper_full_n_segments(m_context.get()); ++i) {
        constexpr double unit = 0.01; // seconds
        lines.push_back({ .start = unit * static_cast<double>(whisper_full_get_segment_t0(m_context.get(), i)),
            .end = unit * static_cast<double>(whisper_full_get_segment_t1(m_context.get(), i)),
            .text = whisper_full_get_segment_text(m_context.get(), i) });
    }
    return lines;
}

} // namespace vantry
