#include "media/MovieJournal.h"

#include "base/Log.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

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

/// What follows is as it lies in memory, so it is read by a program that lays it out in the same way.
struct Head {
    std::array<char, 16> magic{ 'v', 'a', 'n', 't', 'r', 'y', ' ', 'j', 'o', 'u', 'r', 'n', 'a', 'l', ' ', '1' };
    std::uint32_t codecs = avcodec_version();
    std::uint32_t formats = avformat_version();
    std::uint32_t tracks = 0;
    std::uint32_t size = 0; ///< Of the tracks, in bytes.
    std::uint32_t checksum = 0; ///< Of them.

    bool operator==(const Head&) const = default;
};

/// Its extra data follows it.
struct TrackHead {
    AVCodecParameters parameters;
    AVRational timeBase;
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

template <typename T>
void append(std::string& bytes, const T& value)
{
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

/// Nothing where the extra data is cut off.
libav::ParametersPtr readParameters(std::istream& stream, const AVCodecParameters& written)
{
    if (written.ch_layout.order > AV_CHANNEL_ORDER_NATIVE || written.extradata_size < 0
        || written.extradata_size > static_cast<int>(mostTrackBytes))
        return nullptr;
    auto parameters = libav::makeParameters();
    *parameters = written;
    parameters->ch_layout.opaque = nullptr;
    const auto size = static_cast<std::size_t>(written.extradata_size);
    parameters->extradata = static_cast<std::uint8_t*>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
    if (!parameters->extradata)
        throw std::bad_alloc();
    const bool isWhole = static_cast<bool>(stream.read(reinterpret_cast<char*>(parameters->extradata), written.extradata_size));
    return isWhole ? std::move(parameters) : nullptr;
}

Descriptor makeFile(const fs::path& path)
{
    constexpr mode_t permissions = S_IRUSR | S_IWUSR;
    return Descriptor(open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, permissions));
}

[[noreturn]] void refuse(const fs::path& journal)
{
    throw AppError(journal.filename().string() + " cannot be understood");
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
    : m_file(makeFile(pathFor(movie)))
{
    flock(m_file.number(), LOCK_EX);
    std::string tracks;
    for (unsigned i = 0; i < output.nb_streams; ++i) {
        const AVCodecParameters& parameters = *output.streams[i]->codecpar;
        TrackHead track{ .parameters = parameters, .timeBase = timeBases.at(i) };
        track.parameters.extradata = nullptr;
        append(tracks, track);
        tracks.append(reinterpret_cast<const char*>(parameters.extradata), static_cast<std::size_t>(parameters.extradata_size));
    }
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
    if (!m_isWhole || ::write(m_file.number(), bytes, size) == static_cast<ssize_t>(size))
        return;
    const int error = errno;
    m_isWhole = false;
    qCWarning(logMedia, "A movie's journal cannot be written: %s", std::generic_category().message(error).c_str());
}

MovieJournal::Contents MovieJournal::read(const fs::path& journal)
{
    std::error_code unreadable;
    std::ifstream stream(journal, std::ios::binary);
    Head head;
    if (fs::file_size(journal, unreadable) > mostBytes || !vantry::read(stream, head) || head.size > mostTrackBytes
        || head != Head{ .tracks = head.tracks, .size = head.size, .checksum = head.checksum })
        refuse(journal);
    std::string bytes(head.size, '\0');
    if (!stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()))
        || checksumOf(bytes.data(), bytes.size()) != head.checksum)
        refuse(journal);
    Contents contents;
    std::istringstream tracks(bytes);
    for (TrackHead track{}; vantry::read(tracks, track);) {
        auto parameters = readParameters(tracks, track.parameters);
        if (!parameters)
            refuse(journal);
        contents.tracks.push_back({ .parameters = std::move(parameters), .timeBase = track.timeBase });
    }
    for (Entry entry; vantry::read(stream, entry);)
        contents.entries.push_back(entry);
    return contents;
}

} // namespace vantry
