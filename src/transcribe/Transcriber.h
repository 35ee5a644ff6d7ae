#pragma once

#include "project/Project.h"
#include "transcribe/SpeechEngine.h"
#include "transcribe/SpeechHelper.h"
#include "transcribe/SpeechModel.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace vantry {

class SpeechFile;

/// Turns the microphone's track of clips into lines, on this device. One thread at a time, which waits: not the main thread.
///
/// The better engine is taken where it knows the language. If its model is not here it is fetched, and everybody waits for that as
/// long as bytes come: a clip is transcribed only once. Where the model cannot be had, English falls back to the engine that is
/// always here. A model that turns out to be damaged counts as missing. An attempt that failed is not repeated by the same
/// transcriber, so make one for each run over a project.
class Transcriber {
public:
    struct Options {
        std::optional<SpeechModel> model{}; ///< The middle one where nothing else is said.
        std::filesystem::path models = speechModelFolder();
        std::string source = speechModelSource();

        /// How long the model's server may say nothing.
        std::chrono::milliseconds patience{ 4000 };
        SpeechHelper helper{};
    };

    /// Receives how much of a model is there, from 0 to 1, and nothing once it is not waited for any more.
    using OnFetching = std::function<void(std::optional<double> fraction)>;

    explicit Transcriber(Options options, OnFetching onFetching = {});
    ~Transcriber();

    /// What is said, in clip time; no lines where there is no microphone. Nothing when cancelled. Throws AppError.
    std::optional<std::vector<Line>> transcribe(
        const std::filesystem::path& movie, const std::string& locale, const std::stop_token& cancel = {});

    /// Why a lesser engine than the wanted one heard the last clip. Empty when that was not so.
    const std::string& shortfall() const { return m_shortfall; }

    /// Whether the wanted engine knows the locale's language and has its model here.
    bool hasWantedEngine(const std::string& locale) const;

private:
    using Engines = std::vector<std::unique_ptr<const SpeechEngine>>;

    std::optional<std::vector<Line>> recognise(const SpeechFile& speech, const std::string& locale, const std::stop_token& cancel);
    const SpeechEngine* chooseEngine(const std::string& locale, const std::stop_token& cancel);
    bool fetchModel(const SpeechModel& model, const std::stop_token& cancel);

    const Options m_options;
    const OnFetching m_onFetching;
    Engines m_engines; ///< The best first. Those whose model cannot be had are taken out.
    bool m_hasFetched = false; ///< A model, which was whole then: it is not checked again.
    std::string m_problem; ///< Why the last of these could not.
    std::string m_shortfall;
};

/// Writes an audio track of a movie, as one channel, with each sample at its time. Ends early when `cancel` is asked to stop.
/// Throws AppError.
void decodeSpeech(const std::filesystem::path& movie, int track, SpeechFile& speech, const std::stop_token& cancel);

} // namespace vantry
