#pragma once

#include "project/Project.h"
#include "transcribe/PhraseFinder.h"
#include "transcribe/SpeechFile.h"

#include <functional>
#include <vector>

namespace vantry {

/// Receives lines in order.
using LineSink = std::function<void(const Line&)>;

/// Turns speech into text. One thread at a time.
class Recogniser {
public:
    virtual ~Recogniser() = default;

    /// Throws AppError.
    virtual void recognise(const SpeechFile& speech, const std::vector<Phrase>& phrases, const LineSink& sink) = 0;
};

} // namespace vantry
