#include "media/MovieJournal.h"

#include "base/Log.h"
#include "media/Sound.h"

#include <array>
#include <cerrno>
#include <fstream>
#include <new>
#include <string>
#include <string_view>
#include <system_error>
#include <type_traits>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

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

constexpr std::uint32_t mostTracks = 16;
constexpr int mostExtradata = 1 << 20;
constexpr std::uintmax_t mostBytes = 1 << 30; ///< More than a day.

template <typename T>
bool read(std::istream& stream, T& value)
{
    return static_cast<bool>(stream.read(reinterpret_cast<char*>(&value), sizeof value));
}

bool isBetween(std::int64_t value, std::int64_t least, std::int64_t most)
{
    return value >= least && value <= most;
}

bool isPicture(const AVCodecParameters& parameters)
{
    constexpr int mostPixels = 16384;
    return parameters.codec_type == AVMEDIA_TYPE_VIDEO
        && (parameters.codec_id == AV_CODEC_ID_HEVC || parameters.codec_id == AV_CODEC_ID_H264)
        && isBetween(parameters.width, 1, mostPixels) && isBetween(parameters.height, 1, mostPixels);
}

bool isSound(const AVCodecParameters& parameters)
{
    return parameters.codec_type == AVMEDIA_TYPE_AUDIO && parameters.codec_id == AV_CODEC_ID_AAC
        && parameters.sample_rate == sampleRate && isBetween(parameters.ch_layout.nb_channels, 1, 2)
        && isBetween(parameters.frame_size, 1, sampleRate) && isBetween(parameters.initial_padding, 0, sampleRate);
}

/// Whether it is a track as clips have them. A journal may have been damaged, and the library trusts its caller.
bool isSensible(const TrackHead& track)
{
    const AVCodecParameters& parameters = track.parameters;
    const auto order = parameters.ch_layout.order;
    constexpr int mostTicks = 1'000'000'000;
    return (isPicture(parameters) || isSound(parameters)) && (order == AV_CHANNEL_ORDER_NATIVE || order == AV_CHANNEL_ORDER_UNSPEC)
        && isBetween(parameters.extradata_size, 0, mostExtradata) && isBetween(track.timeBase.num, 1, mostTicks)
        && isBetween(track.timeBase.den, 1, mostTicks);
}

/// Nothing where the extra data is cut off.
libav::ParametersPtr readParameters(std::istream& stream, const AVCodecParameters& written)
{
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
    return movie.parent_path() / (std::string(prefix) + movie.filename().string() + std::string(ending));
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
    const Head head{ .tracks = output.nb_streams };
    write(&head, sizeof head);
    for (unsigned i = 0; i < output.nb_streams; ++i) {
        const AVCodecParameters& parameters = *output.streams[i]->codecpar;
        TrackHead track{ .parameters = parameters, .timeBase = timeBases.at(i) };
        track.parameters.extradata = nullptr;
        write(&track, sizeof track);
        write(parameters.extradata, static_cast<std::size_t>(parameters.extradata_size));
    }
}

void MovieJournal::add(const AVPacket& packet, std::int64_t end)
{
    const Entry entry{ .track = packet.stream_index,
        .flags = packet.flags,
        .pts = packet.pts,
        .dts = packet.dts,
        .duration = packet.duration,
        .end = end };
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
    if (fs::file_size(journal, unreadable) > mostBytes || !vantry::read(stream, head) || head != Head{ .tracks = head.tracks }
        || head.tracks > mostTracks)
        refuse(journal);
    Contents contents;
    for (std::uint32_t i = 0; i < head.tracks; ++i) {
        TrackHead track{};
        if (!vantry::read(stream, track) || !isSensible(track))
            refuse(journal);
        auto parameters = readParameters(stream, track.parameters);
        if (!parameters)
            refuse(journal);
        contents.tracks.push_back({ .parameters = std::move(parameters), .timeBase = track.timeBase });
    }
    for (Entry entry; vantry::read(stream, entry);)
        contents.entries.push_back(entry);
    return contents;
}

} // namespace vantry
