#include "media/Muxer.h"

#include "base/Durability.h"
#include "media/AudioEncoder.h"
#include "media/MovieCompletion.h"
#include "media/MovieJournal.h"
#include "media/MovieOutput.h"
#include "media/VideoEncoder.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <utility>
#include <vector>

#include <fcntl.h>

namespace vantry {

namespace {

/// How far a clip's end may lie before the newest packet that was written.
constexpr MediaTime longestCut = std::chrono::seconds(1);

/// Of so many packets a clip's muxer may know in memory, at about 80 bytes each. An hour has half a million.
constexpr int mostRemembered = 1 << 12;

struct OutputTrack {
    AVStream* stream = nullptr;
    AVRational timeBase{}; ///< Of the encoder's packets.
    std::deque<Packet> held; ///< A clip's newest: where it ends may lie a little back.
};

std::int64_t ticks(MediaTime time, AVRational timeBase)
{
    return av_rescale_q(time.count(), { 1, MediaTime::period::den }, timeBase);
}

bool isVideo(const OutputTrack& track)
{
    return track.stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO;
}

} // namespace

struct Muxer::State {
    std::filesystem::path file;
    MovieFormat format;
    libav::OutputPtr output;
    std::deque<OutputTrack> tracks;
    std::optional<MovieJournal> journal; ///< Of a clip.
    int remembered = 0; ///< Packets since the output was made.

    std::string what() const { return "Could not write " + file.filename().string(); }
    int addTrack(const AVCodecContext& encoder);
    void beginJournal();
    void renewOutput();
    void complete();
    bool isLeftOut(const OutputTrack& track, const AVPacket& packet) const;
    void hand(OutputTrack& track, Packet packet);
    void endAt(OutputTrack& track, MediaTime end);
};

int Muxer::State::addTrack(const AVCodecContext& encoder)
{
    const auto parameters = libav::makeParameters();
    libav::check(avcodec_parameters_from_context(parameters.get(), &encoder), what());
    AVStream& stream = libav::addStream(*output, *parameters, encoder.time_base);
    tracks.push_back({ .stream = &stream, .timeBase = encoder.time_base, .held = {} });
    return stream.index;
}

void Muxer::State::beginJournal()
{
    std::vector<AVRational> timeBases;
    std::ranges::transform(tracks, std::back_inserter(timeBases), &OutputTrack::timeBase);
    journal.emplace(file, *output, timeBases);
    // What the journal knows of must be in the file.
    output->flush_packets = 1;
}

/// A new one lays out packets as the one before, and knows of none. The header that it wants to write is in the file already.
void Muxer::State::renewOutput()
{
    auto fresh = libav::makeOutput(format, {}, what());
    fresh->flags |= AVFMT_FLAG_CUSTOM_IO;
    for (auto& track : tracks)
        track.stream = &libav::addStream(*fresh, *track.stream->codecpar, track.timeBase);
    libav::check(avio_open_dyn_buf(&fresh->pb), what());
    libav::writeHeader(*fresh, format, what());
    std::uint8_t* header = nullptr;
    avio_close_dyn_buf(fresh->pb, &header);
    av_free(header);
    fresh->pb = std::exchange(output->pb, nullptr);
    fresh->flags = output->flags;
    fresh->flush_packets = 1;
    output = std::move(fresh);
    remembered = 0;
}

/// What the output remembers of a clip is only the newest.
void Muxer::State::complete()
{
    libav::check(avio_closep(&output->pb), what());
    auto contents = journal->contents();
    auto entries = entriesUntil(static_cast<std::int64_t>(std::filesystem::file_size(file)), contents, what());
    if (entries.empty())
        throw AppError(what() + ": nothing was recorded");
    completeAround(Descriptor(open(file.c_str(), O_RDWR | O_CLOEXEC)), contents.tracks, std::move(entries), what());
}

/// The packet with nothing but the encoder's priming, where no edit list could say so.
bool Muxer::State::isLeftOut(const OutputTrack& track, const AVPacket& packet) const
{
    return format == MovieFormat::Publish && !isVideo(track) && packet.pts < 0;
}

void Muxer::State::hand(OutputTrack& track, Packet packet)
{
    packet->stream_index = track.stream->index;
    av_packet_rescale_ts(packet.get(), track.timeBase, track.stream->time_base);
    // An export's tracks need not come in step, a clip's do: there nothing waits in memory for a camera that does not deliver.
    if (format == MovieFormat::Publish) {
        libav::check(av_interleaved_write_frame(output.get(), packet.get()), what());
    } else {
        if (remembered++ == mostRemembered)
            renewOutput();
        libav::check(av_write_frame(output.get(), packet.get()), what());
        journal->add(*packet, avio_tell(output->pb));
    }
}

void Muxer::State::endAt(OutputTrack& track, MediaTime end)
{
    const auto endTicks = ticks(end, track.timeBase);
    while (track.held.size() > 1 && track.held.back()->pts >= endTicks)
        track.held.pop_back();
    if (track.held.empty())
        return;
    auto& last = *track.held.back();
    const auto lasting = std::max<std::int64_t>(endTicks - last.pts, 1);
    last.duration = isVideo(track) ? lasting : std::min(last.duration, lasting);
}

Muxer::Muxer(const std::filesystem::path& file, MovieFormat format)
    : m_state(new State{ .file = file, .format = format, .output = nullptr, .tracks = {} })
{
    // The protocol is named because a file's name may hold a colon.
    const std::string url = "file:" + file.string();
    m_state->output = libav::makeOutput(format, url, m_state->what());
    libav::check(avio_open(&m_state->output->pb, url.c_str(), AVIO_FLAG_WRITE), m_state->what());
}

Muxer::~Muxer() = default;

int Muxer::addTrack(const VideoEncoder& encoder)
{
    return m_state->addTrack(encoder.context());
}

int Muxer::addTrack(const AudioEncoder& encoder)
{
    return m_state->addTrack(encoder.context());
}

void Muxer::start()
{
    auto& state = *m_state;
    libav::writeHeader(*state.output, state.format, state.what());
    if (state.format == MovieFormat::Clip)
        state.beginJournal();
}

void Muxer::write(int track, Packet packet)
{
    auto& target = m_state->tracks.at(static_cast<std::size_t>(track));
    if (m_state->isLeftOut(target, *packet))
        return;
    if (m_state->format == MovieFormat::Publish)
        return m_state->hand(target, std::move(packet));
    target.held.push_back(std::move(packet));
    const auto window = ticks(longestCut, target.timeBase);
    while (target.held.size() > 1 && target.held.back()->pts - target.held.front()->pts > window) {
        m_state->hand(target, std::move(target.held.front()));
        target.held.pop_front();
    }
}

void Muxer::finish(std::optional<MediaTime> end)
{
    auto& state = *m_state;
    for (auto& track : state.tracks) {
        if (end)
            state.endAt(track, *end);
        for (auto& packet : track.held)
            state.hand(track, std::move(packet));
        track.held.clear();
    }
    if (state.format == MovieFormat::Clip) {
        state.complete();
    } else {
        libav::check(av_write_trailer(state.output.get()), state.what());
        libav::check(avio_closep(&state.output->pb), state.what());
    }
    makeDurable(state.file);
}

} // namespace vantry
