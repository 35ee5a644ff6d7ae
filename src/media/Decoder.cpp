#include "media/Decoder.h"

namespace vantry {

namespace {

libav::CodecContextPtr openCodec(const AVStream& stream, int threads, const std::string& complaint)
{
    const auto* codec = avcodec_find_decoder(stream.codecpar->codec_id);
    if (!codec)
        throw AppError(complaint + ": " + libav::errorText(AVERROR_DECODER_NOT_FOUND));
    libav::CodecContextPtr context(avcodec_alloc_context3(codec));
    if (!context)
        throw std::bad_alloc();
    libav::check(avcodec_parameters_to_context(context.get(), stream.codecpar), complaint);
    context->pkt_timebase = stream.time_base;
    context->thread_count = threads;
    libav::check(avcodec_open2(context.get(), codec, nullptr), complaint);
    return context;
}

Demuxer openTrack(const std::filesystem::path& movie, int track, TrackMedia media)
{
    Demuxer demuxer(movie);
    demuxer.select(track, media);
    return demuxer;
}

} // namespace

Decoder::Decoder(const std::filesystem::path& movie, int track, Options options)
    : m_demuxer(openTrack(movie, track, options.media))
    , m_codec(openCodec(m_demuxer.stream(), options.threads, complaint()))
{
}

libav::FramePtr Decoder::next()
{
    auto frame = libav::makeFrame();
    for (;;) {
        const int result = avcodec_receive_frame(m_codec.get(), frame.get());
        if (result == AVERROR_EOF)
            return nullptr;
        if (result != AVERROR(EAGAIN)) {
            libav::check(result, complaint());
            return frame;
        }
        feed();
    }
}

void Decoder::feed()
{
    const bool more = m_demuxer.next(*m_packet);
    libav::check(avcodec_send_packet(m_codec.get(), more ? m_packet.get() : nullptr), complaint());
}

void Decoder::seek(MediaTime time)
{
    m_demuxer.seek(time);
    avcodec_flush_buffers(m_codec.get());
}

MediaTime Decoder::start() const
{
    const auto start = m_demuxer.stream().start_time;
    return start == AV_NOPTS_VALUE ? MediaTime(0) : m_demuxer.time(start);
}

} // namespace vantry
