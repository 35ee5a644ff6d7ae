#pragma once

#include "transcribe/SpeechEngine.h"

namespace vantry {

/// PocketSphinx with the English model of the distribution: always here, and fast, but it mishears more.
class SphinxEngine final : public SpeechEngine {
public:
    bool supports(const std::string& language) const override { return language == "en"; }
    std::optional<SpeechModel> missingModel() const override { return std::nullopt; }
    bool discardDamagedModel(const std::stop_token& /*cancel*/) const override { return false; }
    std::vector<std::string> command(const std::string& /*language*/) const override { return { "sphinx" }; }
};

} // namespace vantry
