#pragma once

#include "transcribe/SpeechModel.h"

#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// Something that turns speech into text on this device, in the helper process. One thread at a time.
class SpeechEngine {
public:
    virtual ~SpeechEngine() = default;

    /// Whether it understands a language (such as "en"), if need be with a model that is not here yet.
    virtual bool supports(const std::string& language) const = 0;

    /// What must be fetched before it can work; nothing when all is here.
    virtual std::optional<SpeechModel> missingModel() const = 0;

    /// How the helper is asked for it.
    virtual std::vector<std::string> command(const std::string& language) const = 0;
};

/// The language of a locale's identifier: "nb" of "nb-NO".
std::string languageOf(const std::string& locale);

} // namespace vantry
