#pragma once

#include "base/Descriptor.h"
#include "media/MovieOutput.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// What a clip's file still lacks while it is written, kept in a hidden file beside it: how its tracks were made, and what each
/// packet is and where it ends. A movie says that at its end only, and gets it from here, whether the clip is stopped or the
/// program died before (`completeMovie`). For the sources of this room only. One thread at a time.
class MovieJournal {
public:
    /// Of one packet, in the order of the file. Times are the stream's.
    struct Entry {
        std::int32_t track = 0;
        std::int32_t flags = 0;
        std::int64_t pts = 0;
        std::int64_t dts = 0;
        std::int64_t duration = 0;
        std::int64_t end = 0; ///< Bytes of the movie's file up to here.
        std::uint64_t checksum = 0; ///< Of the others.

        std::uint64_t expectedChecksum() const;
    };

    struct Track {
        libav::ParametersPtr parameters;
        AVRational timeBase{}; ///< Of the encoder.
    };

    struct Contents {
        std::vector<Track> tracks;
        std::vector<Entry> entries;
    };

    /// Begins it when the movie's header is written, and keeps others off it for as long as this lives. `timeBases` are the
    /// encoders', for each stream. Throws AppError when it cannot be written.
    MovieJournal(const std::filesystem::path& movie, const AVFormatContext& output, const std::vector<AVRational>& timeBases);

    /// Throws AppError when it cannot be written, as on a full disk.
    void add(const AVPacket& packet, std::int64_t end);

    /// What was written so far, even if the file has lost its name. Throws AppError.
    Contents contents() const;

    static std::filesystem::path pathFor(const std::filesystem::path& movie);

    /// The movie that a file is the journal of.
    static std::optional<std::filesystem::path> movieOf(const std::filesystem::path& journal);

    static void remove(const std::filesystem::path& movie);

    /// What a journal holds, as far as it was written. Throws AppError when that cannot be understood.
    static Contents read(const std::filesystem::path& journal);

private:
    void write(const void* bytes, std::size_t size);

    const std::string m_name;
    const Descriptor m_file; ///< Open for as long as this lives, and so is the lock.
};

} // namespace vantry
