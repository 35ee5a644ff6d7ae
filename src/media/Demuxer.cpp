#include "media/Demuxer.h"

#include "media/QuickTimeBoxes.h"

#include <algorithm>
#include <span>
#include <string_view>

namespace vantry {

namespace {

constexpr AVRational mediaTimeBase{ 1, MediaTime::period::den };

MediaTime toMediaTime(std::int64_t time, AVRational timeBase)
{
    return MediaTime(av_rescale_q(time, timeBase, mediaTimeBase));
}

bool isTrackOf(const AVStream& stream, TrackMedia media)
{
    return stream.codecpar->codec_type == (media == TrackMedia::Video ? AVMEDIA_TYPE_VIDEO : AVMEDIA_TYPE_AUDIO);
}

TrackInfo describe(const AVStream& stream)
{
    const auto& parameters = *stream.codecpar;
    const auto first = toMediaTime(stream.start_time == AV_NOPTS_VALUE ? 0 : stream.start_time, stream.time_base);
    const auto length = toMediaTime(stream.duration == AV_NOPTS_VALUE ? 0 : stream.duration, stream.time_base);
    const auto start = std::max(first, MediaTime(0)); // An encoder's priming stands before 0 and is not presented.
    return {
        .index = stream.index,
        .media = isTrackOf(stream, TrackMedia::Video) ? TrackMedia::Video : TrackMedia::Audio,
        .codec = avcodec_get_name(parameters.codec_id),
        .width = parameters.width,
        .height = parameters.height,
        .channels = parameters.ch_layout.nb_channels,
        .sampleRate = parameters.sample_rate,
        .start = start,
        .duration = std::max(first + length - start, MediaTime(0)),
    };
}

libav::InputPtr open(const std::filesystem::path& movie, const std::string& complaint)
{
    // Opening a pipe would wait for somebody to write into it.
    if (std::error_code ignored; std::filesystem::is_fifo(movie, ignored) || std::filesystem::is_character_file(movie, ignored))
        throw AppError(complaint + ": It is not a movie");
    AVFormatContext* input = nullptr;
    // As a URL, so that a colon in a path is never taken for a protocol.
    libav::check(avformat_open_input(&input, ("file:" + movie.string()).c_str(), nullptr, nullptr), complaint);
    return libav::InputPtr(input);
}

bool isQuickTime(const AVFormatContext& input)
{
    return std::string_view(input.iformat->name).starts_with("mov");
}

/// Looks into the packets for what the header leaves open. What it says of sound counts: a damaged packet may say anything.
void findStreamInfo(AVFormatContext& input, const std::string& complaint)
{
    const auto streams = std::span(input.streams, input.nb_streams);
    std::vector<libav::ParametersPtr> declared(streams.size());
    for (std::size_t i = 0; isQuickTime(input) && i < streams.size(); ++i)
        if (streams[i]->codecpar->sample_rate > 0 && streams[i]->codecpar->ch_layout.nb_channels > 0) {
            declared[i] = libav::makeParameters();
            libav::check(avcodec_parameters_copy(declared[i].get(), streams[i]->codecpar), complaint);
        }
    libav::check(avformat_find_stream_info(&input, nullptr), complaint);
    for (std::size_t i = 0; i < declared.size(); ++i)
        if (declared[i])
            libav::check(avcodec_parameters_copy(input.streams[i]->codecpar, declared[i].get()), complaint);
}

} // namespace

Demuxer::Demuxer(const std::filesystem::path& movie)
    : m_complaint("Cannot read " + movie.filename().string())
    , m_input(open(movie, m_complaint))
{
    // The library opens a movie that was cut off as long as it finds something, and then shows less than was recorded.
    if (isQuickTime(*m_input) && isIndexCutOff(movie))
        throw AppError(m_complaint + ": The end of the file is missing");
    findStreamInfo(*m_input, m_complaint);
}

std::vector<TrackInfo> Demuxer::tracks() const
{
    std::vector<TrackInfo> tracks;
    for (unsigned i = 0; i < m_input->nb_streams; ++i) {
        const auto& stream = *m_input->streams[i];
        if (!isTrackOf(stream, TrackMedia::Video) && !isTrackOf(stream, TrackMedia::Audio))
            continue;
        tracks.push_back(describe(stream));
    }
    return tracks;
}

void Demuxer::select(int track, TrackMedia media)
{
    if (track < 0 || track >= static_cast<int>(m_input->nb_streams) || !isTrackOf(*m_input->streams[track], media))
        throw AppError(
            m_complaint + (media == TrackMedia::Video ? ": It has no such video track" : ": It has no such audio track"));
    m_track = track;
    for (unsigned i = 0; i < m_input->nb_streams; ++i)
        m_input->streams[i]->discard = static_cast<int>(i) == track ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

MediaTime Demuxer::time(std::int64_t streamTime) const
{
    return toMediaTime(streamTime, stream().time_base);
}

bool Demuxer::next(AVPacket& packet)
{
    for (;;) {
        av_packet_unref(&packet);
        const int result = av_read_frame(m_input.get(), &packet);
        if (result < 0 && result != AVERROR(ENOMEM) && makeUp(packet))
            return true;
        if (result == AVERROR_EOF || (result < 0 && isReadUp()))
            return false;
        libav::check(result, m_complaint);
        if (packet.stream_index != m_track)
            continue;
        m_following = av_index_search_timestamp(track(), packet.dts, AVSEEK_FLAG_ANY) + 1;
        return true;
    }
}

/// Nothing follows in the index.
bool Demuxer::isReadUp() const
{
    return isQuickTime(*m_input) && m_following > 0 && m_following == avformat_index_get_entries_count(track());
}

/// What the index says of a packet that could not be read; the one after it is next. False when there is none.
bool Demuxer::makeUp(AVPacket& packet)
{
    const auto* missing = avformat_index_get_entry(track(), m_following);
    if (!isQuickTime(*m_input) || !missing)
        return false;
    m_input->pb->error = 0; // Else nothing is read any more.
    packet.stream_index = m_track;
    packet.pts = packet.dts = missing->timestamp;
    packet.flags = AV_PKT_FLAG_CORRUPT;
    ++m_following;
    const auto* next = avformat_index_get_entry(track(), m_following);
    packet.duration = std::max<std::int64_t>((next ? next->timestamp : stream().start_time + stream().duration) - packet.pts, 0);
    // The library reads what a disk refuses again and again.
    if (next)
        av_seek_frame(m_input.get(), m_track, next->timestamp, AVSEEK_FLAG_ANY);
    return true;
}

void Demuxer::seek(MediaTime time)
{
    const auto target = av_rescale_q_rnd(time.count(), mediaTimeBase, stream().time_base, AV_ROUND_DOWN);
    m_following = std::max(av_index_search_timestamp(track(), target, AVSEEK_FLAG_BACKWARD), 0);
    if (av_seek_frame(m_input.get(), m_track, target, AVSEEK_FLAG_BACKWARD) >= 0)
        return;
    // Nothing that early: the first keyframe.
    libav::check(avformat_seek_file(m_input.get(), m_track, INT64_MIN, target, INT64_MAX, 0), m_complaint);
}

} // namespace vantry
