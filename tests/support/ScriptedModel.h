#pragma once

#include <QByteArray>

#include <string>
#include <vector>

namespace vantry::test {

/// What a model says of every stretch that it hears.
struct ScriptedLine {
    double start = 0; ///< Seconds of the stretch, in steps of 0.02.
    double end = 0;
    std::vector<std::string> words{}; ///< Each with the blank before it.
};

/// A Whisper model of a few megabytes that always says the same. Everything about it is as in a trained one, but it does not
/// listen: its weights are nothing but the position of each word in the script.
QByteArray scriptedModel(const std::vector<ScriptedLine>& script);

} // namespace vantry::test
