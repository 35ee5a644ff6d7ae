#include "media/Encoding.h"

namespace vantry {

void PacketDeleter::operator()(AVPacket* packet) const
{
    av_packet_free(&packet);
}

namespace libav {

namespace {

std::string nameOf(const AVCodecContext& encoder)
{
    return encoder.codec->name;
}

} // namespace

CodecContextPtr makeEncoder(const char* name)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(name);
    if (!codec)
        throw AppError(std::string("The encoder ") + name + " is missing");
    CodecContextPtr encoder(avcodec_alloc_context3(codec));
    if (!encoder)
        throw std::bad_alloc();
    // Encoders tell of their settings and statistics at the level where others tell of events; failures still come through.
    encoder->log_level_offset = AV_LOG_VERBOSE - AV_LOG_INFO;
    return encoder;
}

void setOption(AVCodecContext& encoder, const char* name, const std::string& value)
{
    check(
        av_opt_set(encoder.priv_data, name, value.c_str(), 0), "The encoder " + nameOf(encoder) + " refused " + name + "=" + value);
}

void openEncoder(AVCodecContext& encoder)
{
    check(avcodec_open2(&encoder, nullptr, nullptr), "The encoder " + nameOf(encoder) + " could not be opened");
}

void encode(AVCodecContext& encoder, const AVFrame* frame, const PacketSink& sink)
{
    check(avcodec_send_frame(&encoder, frame), "The encoder " + nameOf(encoder) + " failed");
    for (;;) {
        Packet packet(makePacket().release());
        const int result = avcodec_receive_packet(&encoder, packet.get());
        if (result == AVERROR(EAGAIN) || result == AVERROR_EOF)
            return;
        check(result, "The encoder " + nameOf(encoder) + " failed");
        sink(std::move(packet));
    }
}

} // namespace libav

} // namespace vantry
