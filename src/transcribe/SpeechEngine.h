#pragma once

#include "transcribe/SpeechModel.h"

#include <optional>
#include <stop_token>
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

    /// Discards its model where that is not any more what was published, so that it is missing then. True when it did. To be asked
    /// when it has failed, since it reads all of the model; false when `cancel` is asked to stop meanwhile.
    virtual bool discardDamagedModel(const std::stop_token& cancel) const = 0;

    /// How the helper is asked for it.
    virtual std::vector<std::string> command(const std::string& language) const = 0;
};

/// The language of a locale's identifier: "nb" of "nb-NO".
std::string languageOf(const std::string& locale);

} // namespace vantry
