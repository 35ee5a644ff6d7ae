#include "speechhelper/Margins.h"

#include <algorithm>

namespace vantry {

Phrase withMargins(const std::vector<Phrase>& phrases, std::size_t index)
{
    constexpr SampleCount margin(sampleRate / 5);
    const Phrase& phrase = phrases.at(index);
    const SampleCount before = index == 0 ? phrase.start : (phrase.start - phrases[index - 1].end) / 2;
    const SampleCount after = index + 1 == phrases.size() ? margin : (phrases[index + 1].start - phrase.end) / 2;
    return { phrase.start - std::min(margin, before), phrase.end + std::min(margin, after) };
}

} // namespace vantry
