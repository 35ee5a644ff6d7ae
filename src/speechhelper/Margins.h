#pragma once

#include "transcribe/PhraseFinder.h"

#include <vector>

namespace vantry {

/// A phrase with a little of the pauses around it, as recognisers want it, but nothing of its neighbours.
Phrase withMargins(const std::vector<Phrase>& phrases, std::size_t index);

} // namespace vantry
