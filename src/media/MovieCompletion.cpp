#include "media/MovieCompletion.h"

#include "media/MovieOutput.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <new>
#include <utility>

namespace vantry {

namespace {

using Entry = MovieJournal::Entry;

/// A movie's file in which the packets are there already, and what is written around them is not.
class AroundPackets {
public:
    /// The packets end there, and what follows is cut off.
    AroundPackets(Descriptor movie, std::int64_t end, const std::string& what);

    AVIOContext* context() { return m_context.get(); }

    /// The packets begin at this byte.
    void packetsBeginAt(std::int64_t begin) { m_begin = begin; }

private:
    struct ContextDeleter {
        void operator()(AVIOContext* context) const
        {
            av_freep(&context->buffer);
            avio_context_free(&context);
        }
    };

    static int write(void* self, std::uint8_t* bytes, int size);
    static std::int64_t seek(void* self, std::int64_t offset, int from);
    bool writeAt(std::int64_t position, const std::uint8_t* bytes, std::int64_t size) const;

    const Descriptor m_file;
    std::int64_t m_begin = 0;
    const std::int64_t m_end;
    std::int64_t m_position = 0;
    std::unique_ptr<AVIOContext, ContextDeleter> m_context;
};

AroundPackets::AroundPackets(Descriptor movie, std::int64_t end, const std::string& what)
    : m_file(std::move(movie))
    , m_begin(end)
    , m_end(end)
{
    if (ftruncate(m_file.number(), end) != 0)
        libav::check(AVERROR(errno), what);
    constexpr int bufferSize = 1 << 16;
    auto* buffer = static_cast<std::uint8_t*>(av_malloc(bufferSize));
    if (buffer)
        m_context.reset(avio_alloc_context(buffer, bufferSize, 1, this, nullptr, write, seek));
    if (!m_context)
        throw std::bad_alloc();
}

/// What lies between the first packet and the last one's end is left as it is.
int AroundPackets::write(void* self, std::uint8_t* bytes, int size)
{
    auto& file = *static_cast<AroundPackets*>(self);
    const std::int64_t position = file.m_position;
    const std::int64_t ahead = std::clamp<std::int64_t>(file.m_begin - position, 0, size);
    const std::int64_t behind = std::clamp<std::int64_t>(position + size - file.m_end, 0, size);
    file.m_position += size;
    if (!file.writeAt(position, bytes, ahead) || !file.writeAt(position + size - behind, bytes + size - behind, behind))
        return AVERROR(errno);
    return size;
}

std::int64_t AroundPackets::seek(void* self, std::int64_t offset, int from)
{
    auto& file = *static_cast<AroundPackets*>(self);
    if (from != SEEK_SET)
        return AVERROR(EINVAL);
    return file.m_position = offset;
}

bool AroundPackets::writeAt(std::int64_t position, const std::uint8_t* bytes, std::int64_t size) const
{
    while (size > 0) {
        const auto count = pwrite(m_file.number(), bytes, static_cast<std::size_t>(size), position);
        if (count < 0 && errno != EINTR)
            return false;
        if (count > 0) {
            bytes += count;
            position += count;
            size -= count;
        }
    }
    return true;
}

/// As much of a packet as its place in the index depends on: its size. Both kinds of video take it for one unit of an unknown type.
constexpr std::array<std::uint8_t, 4> startOfUnit{ 0, 0, 0, 1 };
constexpr std::uint8_t anything = 0x55;

bool isVideo(const AVCodecParameters& parameters)
{
    return parameters.codec_type == AVMEDIA_TYPE_VIDEO;
}

/// Writes the movie once more, around the packets that are in its file.
class Completion {
public:
    Completion(Descriptor movie, const std::vector<MovieJournal::Track>& tracks, std::vector<Entry> entries, std::string what);

    /// Its length in seconds. Throws AppError, also when the packets turn out not to lie as the journal says.
    double run();

private:
    double endOf(const Entry& entry) const;
    double letPicturesLast();
    void passOver(const Entry& entry);

    const std::string m_what;
    std::vector<Entry> m_entries;
    AroundPackets m_file;
    libav::OutputPtr m_output;
    libav::PacketPtr m_packet = libav::makePacket();
    std::vector<std::uint8_t> m_bytes;
};

Completion::Completion(
    Descriptor movie, const std::vector<MovieJournal::Track>& tracks, std::vector<Entry> entries, std::string what)
    : m_what(std::move(what))
    , m_entries(std::move(entries))
    , m_file(std::move(movie), m_entries.back().end, m_what)
    , m_output(libav::makeOutput(MovieFormat::Clip, {}, m_what))
    , m_bytes(startOfUnit.begin(), startOfUnit.end())
{
    for (const auto& track : tracks)
        libav::addStream(*m_output, *track.parameters, track.timeBase);
    m_output->flags |= AVFMT_FLAG_CUSTOM_IO;
    m_output->pb = m_file.context();
    libav::writeHeader(*m_output, MovieFormat::Clip, m_what);
    avio_flush(m_output->pb);
    m_file.packetsBeginAt(avio_tell(m_output->pb));
}

double Completion::run()
{
    const double length = letPicturesLast();
    for (const Entry& entry : m_entries)
        passOver(entry);
    libav::check(av_write_trailer(m_output.get()), m_what);
    avio_flush(m_output->pb);
    libav::check(m_output->pb->error, m_what);
    return length;
}

double Completion::endOf(const Entry& entry) const
{
    return static_cast<double>(entry.pts + entry.duration) * av_q2d(m_output->streams[entry.track]->time_base);
}

/// Each track's last one until the end of all.
double Completion::letPicturesLast()
{
    double length = 0;
    for (const Entry& entry : m_entries)
        length = std::max(length, endOf(entry));
    std::vector<Entry*> last(m_output->nb_streams);
    for (Entry& entry : m_entries) {
        Entry*& newest = last[static_cast<std::size_t>(entry.track)];
        if (!newest || entry.pts > newest->pts)
            newest = &entry;
    }
    for (Entry* entry : last)
        if (entry && isVideo(*m_output->streams[entry->track]->codecpar))
            entry->duration += std::llround((length - endOf(*entry)) / av_q2d(m_output->streams[entry->track]->time_base));
    return length;
}

void Completion::passOver(const Entry& entry)
{
    const auto begin = avio_tell(m_output->pb);
    const auto size = static_cast<std::size_t>(std::max<std::int64_t>(entry.end - begin, 1));
    if (m_bytes.size() < size)
        m_bytes.resize(size, anything);
    m_packet->data = m_bytes.data();
    m_packet->size = static_cast<int>(size);
    m_packet->stream_index = entry.track;
    m_packet->flags = entry.flags;
    m_packet->pts = entry.pts;
    m_packet->dts = entry.dts;
    m_packet->duration = entry.duration;
    libav::check(av_write_frame(m_output.get(), m_packet.get()), m_what);
    if (avio_tell(m_output->pb) != entry.end)
        throw AppError(m_what + ": its journal is damaged");
}

constexpr std::int64_t largestPacket = 64 << 20;

/// What a file holds where something was to be written when the power went.
bool isNothing(const Entry& entry)
{
    return entry.end == 0 && entry.checksum == 0;
}

} // namespace

std::vector<Entry> entriesUntil(std::int64_t end, MovieJournal::Contents& contents, const std::string& what)
{
    std::vector<Entry>& entries = contents.entries;
    std::int64_t before = 0;
    const auto isLost = [end](const Entry& entry) { return entry.end > end || isNothing(entry); };
    const auto isWhole = [&](const Entry& entry) {
        const auto size = entry.end - std::exchange(before, entry.end);
        return entry.checksum == entry.expectedChecksum() && static_cast<std::size_t>(entry.track) < contents.tracks.size()
            && size > 0 && size <= largestPacket && !isLost(entry);
    };
    const auto last = std::ranges::find_if_not(entries, isWhole);
    if (last != entries.end() && !std::all_of(std::next(last), entries.end(), isLost))
        throw AppError(what + ": its journal is damaged");
    entries.erase(last, entries.end());
    return std::move(entries);
}

double completeAround(
    Descriptor movie, const std::vector<MovieJournal::Track>& tracks, std::vector<Entry> entries, const std::string& what)
{
    return Completion(std::move(movie), tracks, std::move(entries), what).run();
}

} // namespace vantry
