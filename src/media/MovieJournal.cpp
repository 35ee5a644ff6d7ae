#include "media/MovieJournal.h"

#include "base/AppError.h"
#include "media/TrackParameters.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

extern "C" {
#include <libavutil/crc.h>
}

namespace vantry {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view prefix = ".";
constexpr std::string_view ending = ".journal";

constexpr std::array<char, 15> ourMagic{ 'v', 'a', 'n', 't', 'r', 'y', ' ', 'j', 'o', 'u', 'r', 'n', 'a', 'l', ' ' };
constexpr char ourForm = '2';

/// Another version of the libraries may lay out the same movie in another way.
struct Head {
    std::array<char, ourMagic.size()> magic = ourMagic;
    char form = ourForm; ///< Of what follows.
    std::uint32_t codecs = avcodec_version();
    std::uint32_t formats = avformat_version();
    std::uint32_t tracks = 0;
    std::uint32_t size = 0; ///< Of the tracks, in bytes.
    std::uint32_t checksum = 0; ///< Of them.
};

/// Its parameters follow it.
struct TrackHead {
    std::int32_t timeBaseNumerator = 0;
    std::int32_t timeBaseDenominator = 0;
    std::uint32_t size = 0; ///< Of the parameters, in bytes.
};

static_assert(std::is_trivially_copyable_v<Head>);
static_assert(std::is_trivially_copyable_v<TrackHead>);
static_assert(std::is_trivially_copyable_v<MovieJournal::Entry>);

constexpr std::uint32_t mostTrackBytes = 1 << 20;
constexpr std::uintmax_t mostBytes = 1 << 30; ///< More than a day.

template <typename T>
bool read(std::istream& stream, T& value)
{
    return static_cast<bool>(stream.read(reinterpret_cast<char*>(&value), sizeof value));
}

std::uint32_t checksumOf(const void* bytes, std::size_t size)
{
    constexpr std::uint32_t start = ~0U; // So that of nothing but zeros it is not zero.
    return av_crc(av_crc_get_table(AV_CRC_32_IEEE), start, static_cast<const std::uint8_t*>(bytes), size);
}

std::string bytesOf(const AVCodecParameters& parameters, AVRational timeBase)
{
    const std::string values = libav::packed(parameters);
    const TrackHead head{
        .timeBaseNumerator = timeBase.num, .timeBaseDenominator = timeBase.den, .size = static_cast<std::uint32_t>(values.size())
    };
    return std::string(reinterpret_cast<const char*>(&head), sizeof head) + values;
}

/// Nothing where they are not as `bytesOf` gives them.
std::optional<std::vector<MovieJournal::Track>> tracksIn(const std::string& bytes)
{
    std::vector<MovieJournal::Track> tracks;
    std::istringstream stream(bytes);
    for (TrackHead head; stream.peek() != std::istringstream::traits_type::eof();) {
        if (!read(stream, head) || head.size > bytes.size())
            return std::nullopt;
        std::string values(head.size, '\0');
        stream.read(values.data(), head.size);
        auto parameters = stream ? libav::unpacked(values) : nullptr;
        if (!parameters)
            return std::nullopt;
        tracks.push_back({ std::move(parameters), { head.timeBaseNumerator, head.timeBaseDenominator } });
    }
    return tracks;
}

Descriptor makeFile(const fs::path& path)
{
    constexpr mode_t permissions = S_IRUSR | S_IWUSR;
    return Descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, permissions));
}

[[noreturn]] void refuse(const std::string& journal, const std::string& why)
{
    throw AppError(journal + why);
}

/// Throws when what follows it cannot be understood.
Head readHead(std::istream& stream, const std::string& journal)
{
    Head head;
    if (!vantry::read(stream, head))
        refuse(journal, " is damaged");
    if (head.magic != ourMagic)
        refuse(journal, " is no journal of a recording");
    if (head.form != ourForm || head.codecs != avcodec_version() || head.formats != avformat_version())
        refuse(journal, " was written by another version of Vantry or of FFmpeg");
    return head;
}

/// The name is for what goes wrong.
MovieJournal::Contents readAs(const std::string& name, const fs::path& journal)
{
    std::error_code unreadable;
    std::ifstream stream(journal, std::ios::binary);
    const Head head = readHead(stream, name);
    std::string bytes(std::min(head.size, mostTrackBytes), '\0');
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    auto tracks = stream && checksumOf(bytes.data(), bytes.size()) == head.checksum ? tracksIn(bytes) : std::nullopt;
    if (!tracks || tracks->size() != head.tracks || fs::file_size(journal, unreadable) > mostBytes)
        refuse(name, " is damaged");
    MovieJournal::Contents contents{ .tracks = *std::move(tracks), .entries = {} };
    for (MovieJournal::Entry entry; read(stream, entry);)
        contents.entries.push_back(entry);
    return contents;
}

} // namespace

fs::path MovieJournal::pathFor(const fs::path& movie)
{
    std::string name(prefix);
    name += movie.filename().string();
    name += ending;
    return movie.parent_path() / name;
}

std::optional<fs::path> MovieJournal::movieOf(const fs::path& journal)
{
    const std::string name = journal.filename().string();
    if (!name.starts_with(prefix) || !name.ends_with(ending) || name.size() <= prefix.size() + ending.size())
        return std::nullopt;
    return journal.parent_path() / name.substr(prefix.size(), name.size() - prefix.size() - ending.size());
}

void MovieJournal::remove(const fs::path& movie)
{
    std::error_code ignored; // One that stays is found again.
    fs::remove(pathFor(movie), ignored);
}

MovieJournal::MovieJournal(const fs::path& movie, const AVFormatContext& output, const std::vector<AVRational>& timeBases)
    : m_name(pathFor(movie).filename().string())
    , m_file(makeFile(pathFor(movie)))
{
    flock(m_file.number(), LOCK_EX);
    std::string tracks;
    for (unsigned i = 0; i < output.nb_streams; ++i)
        tracks += bytesOf(*output.streams[i]->codecpar, timeBases.at(i));
    const Head head{ .tracks = output.nb_streams,
        .size = static_cast<std::uint32_t>(tracks.size()),
        .checksum = checksumOf(tracks.data(), tracks.size()) };
    write(&head, sizeof head);
    write(tracks.data(), tracks.size());
}

std::uint64_t MovieJournal::Entry::expectedChecksum() const
{
    return checksumOf(this, offsetof(Entry, checksum));
}

void MovieJournal::add(const AVPacket& packet, std::int64_t end)
{
    Entry entry{ .track = packet.stream_index,
        .flags = packet.flags,
        .pts = packet.pts,
        .dts = packet.dts,
        .duration = packet.duration,
        .end = end };
    entry.checksum = entry.expectedChecksum();
    write(&entry, sizeof entry);
}

void MovieJournal::write(const void* bytes, std::size_t size)
{
    const auto count = ::write(m_file.number(), bytes, size);
    if (count != static_cast<ssize_t>(size))
        libav::check(AVERROR(count < 0 ? errno : ENOSPC), "Could not write " + m_name);
}

MovieJournal::Contents MovieJournal::contents() const
{
    return readAs(m_name, "/proc/self/fd/" + std::to_string(m_file.number()));
}

MovieJournal::Contents MovieJournal::read(const fs::path& journal)
{
    return readAs(journal.filename().string(), journal);
}

} // namespace vantry
