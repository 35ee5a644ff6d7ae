#pragma once

#include "speechhelper/Recogniser.h"

#include <filesystem>
#include <memory>
#include <string>

struct whisper_context;

namespace vantry {

/// Lines are what the model makes of half a minute at a time, moved to where somebody speaks.
class WhisperRecogniser final : public Recogniser {
public:
    /// `language` as the models name it. Throws AppError when the model cannot be used.
    WhisperRecogniser(const std::filesystem::path& model, std::string language);
    ~WhisperRecogniser() override;

    void recognise(const SpeechFile& speech, const std::vector<Phrase>& phrases, const LineSink& sink) override;

private:
    struct Free {
        void operator()(whisper_context* context) const;
    };

    std::vector<Line> listen(const std::vector<float>& samples);

    const std::string m_language;
    const std::unique_ptr<whisper_context, Free> m_context;
};

} // namespace vantry
