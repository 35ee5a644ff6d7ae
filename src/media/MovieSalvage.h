#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace vantry {

/// The clips in a folder whose writing was cut off, by a crash or because the power went, and which can be completed: there is a
/// journal of them, and nobody writes it any more. Errors count as none.
std::vector<std::filesystem::path> cutOffMovies(const std::filesystem::path& folder);

/// Completes such a clip from its journal, with all that reached the disk, and gives its length in seconds. Nothing when that is
/// not even one picture, or when the journal cannot be understood: both files stay as they are then. What was recorded is not read
/// or moved, so that takes no room, and about a second for an hour. It can be done again when it is cut off itself. Throws
/// AppError.
std::optional<double> completeMovie(const std::filesystem::path& movie);

/// Removes the journal: the movie is taken care of.
void forgetJournal(const std::filesystem::path& movie);

} // namespace vantry
