#pragma once

#include "base/Descriptor.h"
#include "media/MovieJournal.h"

#include <cstdint>
#include <string>
#include <vector>

/// How a clip's file gets what a movie says at its end: from the journal, around the packets that are in the file already. A clip
/// that is stopped is completed by the same lines as one that was cut off. For the sources of this room only.
namespace vantry {

/// The packets within the first `end` bytes of the movie; they are taken out of `contents`. Throws AppError when the journal is
/// damaged: what followed would be lost.
std::vector<MovieJournal::Entry> entriesUntil(std::int64_t end, MovieJournal::Contents& contents, const std::string& what);

/// Writes the movie once more around these packets, of which there is at least one, and gives its length in seconds. What follows
/// them in the file is cut off. Throws AppError, also when they turn out not to lie as the journal says.
double completeAround(Descriptor movie, const std::vector<MovieJournal::Track>& tracks, std::vector<MovieJournal::Entry> entries,
    const std::string& what);

} // namespace vantry
