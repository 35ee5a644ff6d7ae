#include "media/JpegDecoder.h"

#include "media/Libav.h"
#include "media/PictureConverter.h"
#include "media/YuvColours.h"

#include <cstring>
#include <optional>

namespace vantry {

namespace {

constexpr const char* failure = "The camera's image is damaged";

libav::CodecContextPtr openCodec()
{
    const auto* codec = avcodec_find_decoder(AV_CODEC_ID_MJPEG);
    libav::CodecContextPtr context(codec ? avcodec_alloc_context3(codec) : nullptr);
    if (!context)
        throw AppError("There is no decoder for the camera's images");
    // One image in, one picture out.
    context->thread_count = 1;
    context->flags |= AV_CODEC_FLAG_LOW_DELAY;
    libav::check(avcodec_open2(context.get(), codec, nullptr), failure);
    return context;
}

bool hasHalfChroma(const AVFrame& frame)
{
    return frame.format == AV_PIX_FMT_YUVJ420P || frame.format == AV_PIX_FMT_YUVJ422P;
}

/// The mean of two rows, which may be the same one.
void mixRows(const std::uint8_t* upper, const std::uint8_t* lower, std::uint8_t* to, int count)
{
    for (int x = 0; x < count; ++x)
        to[x] = static_cast<std::uint8_t>((upper[x] + lower[x] + 1) / 2);
}

/// As cameras make them: all rows of chroma or every second one.
void drawFrame(const AVFrame& frame, PictureBuffer& target)
{
    const int rows = frame.format == AV_PIX_FMT_YUVJ422P ? 2 : 1;
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto to = target.plane(index);
        const auto row = [&](int y) { return frame.data[index] + std::ptrdiff_t{ y } * frame.linesize[index]; };
        for (int y = 0; y < to.height; ++y) {
            if (index == PlaneY || rows == 1)
                std::memcpy(to.row(y), row(y), static_cast<std::size_t>(to.width));
            else
                mixRows(row(2 * y), row(2 * y + 1), to.row(y), to.width);
        }
    }
    convertColours(target, jpegColours);
}

} // namespace

struct JpegDecoder::State {
    libav::CodecContextPtr codec = openCodec();
    libav::PacketPtr packet = libav::makePacket();
    std::optional<PicturePool> pool;
    PictureConverter others; ///< For what cameras hardly ever send.
};

JpegDecoder::JpegDecoder()
    : m_state(std::make_unique<State>())
{
}

JpegDecoder::~JpegDecoder() = default;

Picture JpegDecoder::decode(std::span<const std::uint8_t> image)
{
    auto& state = *m_state;
    // The decoder reads a little beyond the end.
    libav::check(av_new_packet(state.packet.get(), static_cast<int>(image.size())), failure);
    std::memcpy(state.packet->data, image.data(), image.size());
    const int sent = avcodec_send_packet(state.codec.get(), state.packet.get());
    av_packet_unref(state.packet.get());
    libav::check(sent, failure);
    auto frame = libav::makeFrame();
    libav::check(avcodec_receive_frame(state.codec.get(), frame.get()), failure);
    if (frame->width < 2 || frame->height < 2)
        throw AppError(failure);
    if (!hasHalfChroma(*frame))
        return state.others.convert(std::move(frame));
    const int width = frame->width & ~1, height = frame->height & ~1;
    if (!state.pool || state.pool->width() != width || state.pool->height() != height)
        state.pool.emplace(width, height);
    auto picture = state.pool->make();
    drawFrame(*frame, picture);
    return std::move(picture).share();
}

} // namespace vantry
