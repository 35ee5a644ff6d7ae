#include "transcribe/Transcriber.h"

#include "base/AppError.h"
#include "base/Log.h"
#include "media/AudioReader.h"
#include "transcribe/ModelDownload.h"
#include "transcribe/PhraseFinder.h"
#include "transcribe/SpeechFile.h"
#include "transcribe/SphinxEngine.h"
#include "transcribe/WhisperEngine.h"

#include <QString>

#include <algorithm>
#include <utility>

namespace vantry {

namespace {

/// The first that is not the sound of other applications.
std::optional<int> microphoneTrack(const std::filesystem::path& movie)
{
    for (const TrackInfo& track : readTracks(movie))
        if (track.media == TrackMedia::Audio && track.channels != 2)
            return track.index;
    return std::nullopt;
}

/// Without white space around texts, and without lines of nothing else.
std::vector<Line> tidied(std::vector<Line> lines)
{
    for (Line& line : lines) {
        line.text = QString::fromStdString(line.text).trimmed().toStdString();
        line.end = std::max(line.start, line.end);
    }
    std::erase_if(lines, [](const Line& line) { return line.text.empty(); });
    return lines;
}

[[noreturn]] void failOf(const std::string& locale)
{
    throw AppError("On-device transcription doesn't support “" + locale + "”. Pick another language in Settings.");
}

} // namespace

void decodeSpeech(const std::filesystem::path& movie, int track, SpeechFile& speech, const std::stop_token& cancel)
{
    AudioReader reader(movie, track, 1);
    while (const auto sound = reader.next()) {
        if (cancel.stop_requested())
            return;
        speech.write(std::chrono::round<SampleCount>(sound->time), sound->sound.samples);
    }
}

Transcriber::Transcriber(Options options, OnFetching onFetching)
    : m_options(std::move(options))
    , m_onFetching(std::move(onFetching))
{
    m_engines.push_back(
        std::make_unique<WhisperEngine>(m_options.models, m_options.model.value_or(speechModel(SpeechModelSize::base))));
    m_engines.push_back(std::make_unique<SphinxEngine>());
}

Transcriber::~Transcriber() = default;

std::optional<std::vector<Line>> Transcriber::transcribe(
    const std::filesystem::path& movie, const std::string& locale, const std::stop_token& cancel)
{
    m_shortfall.clear();
    const auto track = microphoneTrack(movie);
    if (!track)
        return std::vector<Line>();
    SpeechFile speech;
    decodeSpeech(movie, *track, speech, cancel);
    const std::string language = languageOf(locale);
    if (std::ranges::none_of(m_engines, [&](const auto& engine) { return engine->supports(language); }))
        failOf(locale);
    const bool isSpoken = !findPhrases(speech, cancel).empty();
    if (cancel.stop_requested())
        return std::nullopt;
    if (!isSpoken)
        return std::vector<Line>();
    auto lines = recognise(speech, locale, cancel);
    if (!lines)
        return std::nullopt;
    m_shortfall = m_problem;
    return tidied(*std::move(lines));
}

bool Transcriber::hasWantedEngine(const std::string& locale) const
{
    const SpeechEngine& wanted = *m_engines.front();
    return m_problem.empty() && wanted.supports(languageOf(locale)) && !wanted.missingModel();
}

/// Once more where it failed of a model that has been damaged since it was fetched.
std::optional<std::vector<Line>> Transcriber::recognise(
    const SpeechFile& speech, const std::string& locale, const std::stop_token& cancel)
{
    for (;;) {
        const SpeechEngine* engine = chooseEngine(locale, cancel);
        if (!engine)
            return std::nullopt;
        try {
            return m_options.helper.recognise(engine->command(languageOf(locale)), speech, cancel);
        } catch (const AppError&) {
            const bool isDiscarded = !m_hasFetched && engine->discardDamagedModel(cancel);
            if (cancel.stop_requested())
                return std::nullopt;
            if (!isDiscarded)
                throw;
        }
    }
}

/// One that can start; nothing when cancelled.
const SpeechEngine* Transcriber::chooseEngine(const std::string& locale, const std::stop_token& cancel)
{
    const std::string language = languageOf(locale);
    for (auto engine = m_engines.begin(); engine != m_engines.end();) {
        if (!(*engine)->supports(language)) {
            ++engine;
            continue;
        }
        const auto missing = (*engine)->missingModel();
        if (!missing || fetchModel(*missing, cancel))
            return engine->get();
        if (cancel.stop_requested())
            return nullptr;
        engine = m_engines.erase(engine);
    }
    if (!m_problem.empty())
        throw AppError(m_problem);
    failOf(locale);
}

/// Whether it is here now. Why it is not is kept.
bool Transcriber::fetchModel(const SpeechModel& model, const std::stop_token& cancel)
{
    const auto tell = [&](std::optional<double> fraction) {
        if (m_onFetching)
            m_onFetching(fraction);
    };
    Fetched fetched = Fetched::Unreachable;
    try {
        fetched = fetch({ .model = model,
                            .folder = m_options.models,
                            .source = m_options.source,
                            .patience = m_options.patience,
                            .onProgress = tell },
            cancel);
    } catch (const std::exception& error) {
        m_problem = error.what();
        qCWarning(logTranscribe) << error.what();
    }
    if (fetched == Fetched::Unreachable && m_problem.empty())
        m_problem = "The speech model could not be downloaded: there is no way to its server";
    tell(std::nullopt);
    m_hasFetched = fetched == Fetched::Complete;
    return m_hasFetched;
}

} // namespace vantry
