#pragma once

#include "transcribe/SpeechEngine.h"

#include <filesystem>

namespace vantry {

/// Whisper: hears well and knows many languages, with a model that is fetched once.
class WhisperEngine final : public SpeechEngine {
public:
    /// The model is, or will be, in the folder.
    WhisperEngine(std::filesystem::path folder, SpeechModel model);

    bool supports(const std::string& language) const override;
    std::optional<SpeechModel> missingModel() const override;
    bool discardDamagedModel(const std::stop_token& cancel) const override;
    std::vector<std::string> command(const std::string& language) const override;

private:
    std::filesystem::path file() const { return m_folder / m_model.file; }

    const std::filesystem::path m_folder;
    const SpeechModel m_model;
};

} // namespace vantry
