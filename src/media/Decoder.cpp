#include "media/Decoder.h"

#include <algorithm>
#include <utility>

namespace vantry {

namespace {

libav::CodecContextPtr openCodec(const AVStream& stream, const std::string& complaint)
{
    const auto* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec)
        throw AppError(complaint + ": " + libav::errorText(AVERROR_DECODER_NOT_FOUND));
    libav::CodecContextPtr context(avcodec_alloc_context3(codec));
    if (!context)
        throw std::bad_alloc();
    libav::check(avcodec_parameters_to_context(context.get(), stream.codecpar), complaint);
    context->pkt_timebase = stream.time_base;
    context->thread_count = 1; // Frames cost less than handing them around, and an error belongs to the packet just given.
    context->err_recognition |= AV_EF_EXPLODE; // Else what a codec makes up for damage looks like any other frame.
    libav::check(avcodec_open2(context.get(), codec, nullptr), complaint);
    return context;
}

Demuxer openTrack(const std::filesystem::path& movie, int track, TrackMedia media)
{
    Demuxer demuxer(movie);
    demuxer.select(track, media);
    return demuxer;
}

/// Noise may decode as sound of another kind.
bool isOfKind(const AVFrame& frame, const AVCodecParameters& track)
{
    if (track.codec_type != AVMEDIA_TYPE_AUDIO)
        return true;
    return frame.sample_rate == track.sample_rate && frame.ch_layout.nb_channels == track.ch_layout.nb_channels
        && (track.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC || av_channel_layout_compare(&frame.ch_layout, &track.ch_layout) == 0);
}

} // namespace

Decoder::Decoder(const std::filesystem::path& movie, int track, Options options)
    : m_demuxer(openTrack(movie, track, options.media))
    , m_onDamage(std::move(options.onDamage))
    , m_codec(openCodec(m_demuxer.stream(), complaint()))
{
}

libav::FramePtr Decoder::next()
{
    auto frame = libav::makeFrame();
    for (;;) {
        const int result = avcodec_receive_frame(m_codec.get(), frame.get());
        if (result == AVERROR(ENOMEM))
            libav::check(result, complaint());
        if (result == AVERROR(EAGAIN))
            feed();
        else if (result == AVERROR_EOF && m_damage)
            goOn();
        else if (result == AVERROR_EOF)
            return nullptr;
        else if (result < 0)
            leaveOut(range(*m_packet));
        else if (isGood(*frame))
            return frame;
        else
            leaveOut({ time(*frame), time(*frame) });
    }
}

/// Neither made up by the codec, wholly or in part, nor from behind such a frame.
bool Decoder::isGood(const AVFrame& frame) const
{
    const bool isWhole = frame.decode_error_flags == 0 && (frame.flags & AV_FRAME_FLAG_CORRUPT) == 0;
    const bool isBehindDamage = m_damage && time(frame) >= m_damage->from;
    return isWhole && !isBehindDamage && isOfKind(frame, *m_demuxer.stream().codecpar);
}

void Decoder::feed()
{
    if (!std::exchange(m_isRead, false) && !m_demuxer.next(*m_packet)) {
        avcodec_send_packet(m_codec.get(), nullptr);
        return;
    }
    const bool isCorrupt = (m_packet->flags & AV_PKT_FLAG_CORRUPT) != 0;
    const int result = isCorrupt ? AVERROR_INVALIDDATA : avcodec_send_packet(m_codec.get(), m_packet.get());
    if (result == AVERROR(ENOMEM))
        libav::check(result, complaint());
    if (result < 0)
        leaveOut(range(*m_packet));
}

TimeRange Decoder::range(const AVPacket& packet) const
{
    const auto from = m_demuxer.time(packet.pts == AV_NOPTS_VALUE ? packet.dts : packet.pts);
    return { from, from + m_demuxer.time(packet.duration) };
}

/// The codec is asked for what it has from before the damage, and then begins anew.
void Decoder::leaveOut(TimeRange range)
{
    if (m_damage) {
        m_damage->from = std::min(m_damage->from, range.from);
        m_damage->to = std::max(m_damage->to, range.to);
        return;
    }
    m_damage = range;
    avcodec_send_packet(m_codec.get(), nullptr);
}

/// With the next packet that can be decoded by itself.
void Decoder::goOn()
{
    m_codec = openCodec(m_demuxer.stream(), complaint()); // One that took damage for good may be of no use for what follows.
    while ((m_isRead = m_demuxer.next(*m_packet))) {
        if ((m_packet->flags & AV_PKT_FLAG_KEY) != 0 && (m_packet->flags & AV_PKT_FLAG_CORRUPT) == 0)
            break;
        leaveOut(range(*m_packet));
    }
    const auto damage = *std::exchange(m_damage, std::nullopt);
    if (m_onDamage)
        m_onDamage({ std::max(damage.from, MediaTime(0)), damage.to }); // An encoder's priming stands before 0.
}

void Decoder::seek(MediaTime time)
{
    m_demuxer.seek(time);
    m_isRead = false;
    m_damage.reset();
    avcodec_flush_buffers(m_codec.get());
}

MediaTime Decoder::start() const
{
    const auto start = m_demuxer.stream().start_time;
    return start == AV_NOPTS_VALUE ? MediaTime(0) : m_demuxer.time(start);
}

} // namespace vantry
