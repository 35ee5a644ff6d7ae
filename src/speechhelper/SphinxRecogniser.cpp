#include "speechhelper/SphinxRecogniser.h"

#include "base/AppError.h"
#include "media/Resampling.h"
#include "speechhelper/Margins.h"

#include <pocketsphinx.h>
#include <sphinxbase/err.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

namespace vantry {

namespace {

/// The model's.
constexpr int modelRate = 16000;
constexpr int stepsPerSecond = 100;

ps_decoder_t* makeDecoder(const std::filesystem::path& models)
{
    err_set_logfp(nullptr);
    const std::string hmm = models / "en-us";
    const std::string words = models / "en-us.lm.bin";
    const std::string dictionary = models / "cmudict-en-us.dict";
    // Pauses are cut out already, and what the recogniser leaves out by itself would shift its times. It looks at fewer
    // possibilities than it would, and relies a little more on what is usually said: twice as fast, and no worse.
    cmd_ln_t* settings = cmd_ln_init(nullptr, ps_args(), FALSE, "-hmm", hmm.c_str(), "-lm", words.c_str(), "-dict",
        dictionary.c_str(), "-remove_silence", "no", "-maxhmmpf", "3500", "-lw", "7.5", nullptr);
    if (!settings)
        return nullptr;
    ps_decoder_t* decoder = ps_init(settings);
    cmd_ln_free_r(settings);
    return decoder;
}

/// "the" of "the(2)".
std::string_view spelling(std::string_view word)
{
    return word.substr(0, word.find('('));
}

/// Silence, noise, and where a sentence begins and ends have words of their own.
bool isSpoken(std::string_view word)
{
    return !word.empty() && word.front() != '<' && word.front() != '[' && word.front() != '+';
}

std::vector<std::int16_t> asIntegers(const std::vector<float>& samples)
{
    std::vector<std::int16_t> integers(samples.size());
    std::ranges::transform(samples, integers.begin(),
        [](float sample) { return static_cast<std::int16_t>(std::lround(std::clamp(sample, -1.0F, 1.0F) * INT16_MAX)); });
    return integers;
}

} // namespace

std::filesystem::path SphinxRecogniser::defaultModels()
{
    return std::filesystem::path(VANTRY_SPHINX_MODELS) / "en-us";
}

void SphinxRecogniser::Free::operator()(ps_decoder_s* decoder) const
{
    ps_free(decoder);
}

SphinxRecogniser::SphinxRecogniser(const std::filesystem::path& models)
    : m_decoder(makeDecoder(models))
{
    if (!m_decoder)
        throw AppError("The speech model in " + models.string() + " cannot be used");
}

SphinxRecogniser::~SphinxRecogniser() = default;

void SphinxRecogniser::recognise(const SpeechFile& speech, const std::vector<Phrase>& phrases, const LineSink& sink)
{
    for (std::size_t i = 0; i < phrases.size(); ++i) {
        const Phrase around = withMargins(phrases, i);
        listen(resampled(speech.read(around.start, around.end), modelRate));
        Line line = heard();
        const double start = seconds(around.start);
        line.start += start;
        line.end = std::min(line.end + start, seconds(around.end));
        sink(line);
    }
}

void SphinxRecogniser::listen(const std::vector<float>& samples)
{
    const auto integers = asIntegers(samples);
    // All at once, so that the level is measured over the whole phrase.
    const bool listened = ps_start_utt(m_decoder.get()) == 0
        && ps_process_raw(m_decoder.get(), integers.data(), integers.size(), FALSE, TRUE) >= 0 && ps_end_utt(m_decoder.get()) == 0;
    if (!listened)
        throw AppError("The speech recogniser failed");
}

/// From the first word to the last, in seconds of what was listened to.
Line SphinxRecogniser::heard() const
{
    Line line;
    for (ps_seg_t* word = ps_seg_iter(m_decoder.get()); word; word = ps_seg_next(word)) {
        const std::string_view text = ps_seg_word(word);
        if (!isSpoken(text))
            continue;
        int first = 0;
        int last = 0;
        ps_seg_frames(word, &first, &last);
        if (line.text.empty())
            line.start = static_cast<double>(first) / stepsPerSecond;
        else
            line.text += ' ';
        line.text += spelling(text);
        line.end = static_cast<double>(last + 1) / stepsPerSecond;
    }
    return line;
}

} // namespace vantry
