#include "media/MovieSalvage.h"

#include "base/Durability.h"
#include "media/MovieCompletion.h"
#include "media/MovieJournal.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace vantry {

namespace fs = std::filesystem;

namespace {

using Entry = MovieJournal::Entry;

/// Empty when there is no such file, or when it is something else: nobody waits for a pipe, or writes where a link leads.
Descriptor openFile(const fs::path& path, int flags)
{
    Descriptor file(open(path.c_str(), flags | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status { };
    if (file && (fstat(file.number(), &status) != 0 || !S_ISREG(status.st_mode)))
        file.close();
    return file;
}

bool endsInZeros(const Descriptor& movie, std::int64_t end)
{
    std::array<std::uint8_t, 16> bytes{};
    const auto size = std::min<std::int64_t>(end, bytes.size());
    const auto count = pread(movie.number(), bytes.data(), static_cast<std::size_t>(size), end - size);
    return count < size || std::ranges::all_of(bytes, [](std::uint8_t byte) { return byte == 0; });
}

/// A power cut may leave a file longer than what was written of it. No encoder ends a packet like that.
void dropUnwritten(std::vector<Entry>& entries, const Descriptor& movie)
{
    constexpr std::int64_t longestUnwritten = 64 << 20; ///< So much of it waits in memory at most.
    const auto isUnwritten = [&](const Entry& entry) {
        return entry.end > entries.back().end - longestUnwritten && endsInZeros(movie, entry.end);
    };
    entries.erase(std::ranges::find_if(entries, isUnwritten), entries.end());
}

/// Held as long as the journal is worked on; empty when somebody else does.
Descriptor lockedJournal(const fs::path& movie)
{
    Descriptor journal = openFile(MovieJournal::pathFor(movie), O_RDONLY);
    if (journal && flock(journal.number(), LOCK_EX | LOCK_NB) != 0)
        journal.close();
    return journal;
}

} // namespace

std::vector<fs::path> cutOffMovies(const fs::path& folder)
{
    std::vector<fs::path> movies;
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        const auto movie = MovieJournal::movieOf(entry->path());
        std::error_code unreadable;
        if (movie && fs::is_regular_file(*movie, unreadable) && lockedJournal(*movie))
            movies.push_back(*movie);
    }
    return movies;
}

std::optional<double> completeMovie(const fs::path& movie)
{
    const std::string what = "Could not complete " + movie.filename().string();
    const Descriptor lock = lockedJournal(movie);
    if (!lock)
        return std::nullopt;
    Descriptor file = openFile(movie, O_RDWR);
    if (!file)
        libav::check(AVERROR(errno), what);
    MovieJournal::Contents contents = MovieJournal::read(MovieJournal::pathFor(movie));
    auto entries = entriesUntil(lseek(file.number(), 0, SEEK_END), contents, what);
    dropUnwritten(entries, file);
    if (std::ranges::find(entries, 0, &Entry::track) == entries.end())
        return std::nullopt;
    const double length = completeAround(std::move(file), contents.tracks, std::move(entries), what);
    makeDurable(movie);
    return length;
}

void makeClipDurable(const fs::path& movie)
{
    makeDurable(movie);
    makeDurable(MovieJournal::pathFor(movie));
}

void forgetJournal(const fs::path& movie)
{
    MovieJournal::remove(movie);
}

} // namespace vantry
