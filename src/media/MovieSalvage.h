#pragma once

#include <filesystem>
#include <optional>
#include <vector>

namespace vantry {

/// The clips in a folder whose writing was cut off, by a crash or because the power went, and which can be completed: there is a
/// journal of them, and nobody writes it any more. Errors count as none.
std::vector<std::filesystem::path> cutOffMovies(const std::filesystem::path& folder);

/// Completes such a clip from its journal, with all that reached the disk, and gives its length in seconds. Nothing when that is
/// not even one picture of its first track, or when somebody writes it. What was recorded is neither read nor moved, so that an
/// hour takes about a second. It can be done again when it is cut off itself. Throws AppError when it cannot be written, or when
/// the journal is damaged or another version's: what was recorded stays as it is then.
std::optional<double> completeMovie(const std::filesystem::path& movie);

/// Waits until what was written so far of a clip would outlive a power cut. Any thread. Throws AppError.
void makeClipDurable(const std::filesystem::path& movie);

/// Removes the journal. To be called once a project has the clip: until then a crash could lose it.
void forgetJournal(const std::filesystem::path& movie);

} // namespace vantry
