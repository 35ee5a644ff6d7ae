#pragma once

#include "speechhelper/Recogniser.h"

#include <filesystem>
#include <memory>
#include <vector>

struct ps_decoder_s;

namespace vantry {

/// A line for each phrase in which it hears words, from the first word to the last.
class SphinxRecogniser final : public Recogniser {
public:
    /// Where the distribution keeps its model.
    static std::filesystem::path defaultModels();

    /// Throws AppError when there is no model.
    explicit SphinxRecogniser(const std::filesystem::path& models = defaultModels());
    ~SphinxRecogniser() override;

    void recognise(const SpeechFile& speech, const std::vector<Phrase>& phrases, const LineSink& sink) override;

private:
    struct Free {
        void operator()(ps_decoder_s* decoder) const;
    };

    void listen(const std::vector<float>& samples);
    Line heard() const;

    const std::unique_ptr<ps_decoder_s, Free> m_decoder;
};

} // namespace vantry
