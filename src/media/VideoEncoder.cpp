#include "media/VideoEncoder.h"

#include "media/Encoding.h"

#include <cassert>

namespace vantry {

struct VideoEncoder::State {
    libav::CodecContextPtr context;
    bool constantRate = false;

    void encode(const AVFrame* frame, const PacketSink& sink);
};

void VideoEncoder::State::encode(const AVFrame* frame, const PacketSink& sink)
{
    libav::encode(*context, frame, [&](Packet packet) {
        packet->duration = constantRate ? 1 : 0;
        sink(std::move(packet));
    });
}

namespace {

/// What rate control counts with where pictures come at times of their own.
constexpr int nominalFrameRate = framesPerSecond;

bool isHevc(const VideoEncoderSettings& settings)
{
    return settings.codec == VideoCodec::Hevc;
}

/// Keyframes come by counting alone, not where the picture changes.
bool hasFixedGop(const VideoEncoderSettings& settings)
{
    return settings.gop && settings.frameRate;
}

void describePictures(AVCodecContext& context, const VideoEncoderSettings& settings)
{
    assert(settings.width % 2 == 0 && settings.height % 2 == 0);
    context.width = settings.width;
    context.height = settings.height;
    context.sample_aspect_ratio = { 1, 1 };
    context.pix_fmt = AV_PIX_FMT_YUV420P;
    context.color_range = AVCOL_RANGE_MPEG;
    context.colorspace = AVCOL_SPC_BT709;
    context.color_primaries = AVCOL_PRI_BT709;
    context.color_trc = AVCOL_TRC_BT709;
    context.chroma_sample_location = AVCHROMA_LOC_CENTER;
}

void setTimes(AVCodecContext& context, const VideoEncoderSettings& settings)
{
    context.time_base = { 1, settings.frameRate ? settings.frameRate : settings.timescale };
    context.framerate = { settings.frameRate ? settings.frameRate : nominalFrameRate, 1 };
    context.max_b_frames = settings.bFrames;
    if (settings.gop)
        context.gop_size = settings.gop;
    if (hasFixedGop(settings))
        context.keyint_min = settings.gop;
}

void setRate(AVCodecContext& context, const VideoEncoderSettings& settings)
{
    if (settings.bitRate)
        context.bit_rate = settings.bitRate;
    else
        libav::setOption(context, "crf", std::to_string(settings.constantQuality));
}

/// x265 writes to standard error on its own, and its threads are set by name.
std::string x265Parameters(const VideoEncoderSettings& settings)
{
    std::string parameters = "log-level=error:open-gop=0";
    if (hasFixedGop(settings))
        parameters += ":scenecut=0";
    if (settings.threads)
        parameters += ":pools=" + std::to_string(settings.threads);
    if (!settings.parameters.empty())
        parameters += ":" + settings.parameters;
    return parameters;
}

void setEncoder(AVCodecContext& context, const VideoEncoderSettings& settings)
{
    if (!settings.preset.empty())
        libav::setOption(context, "preset", settings.preset);
    libav::setOption(context, "forced-idr", "1");
    if (isHevc(settings)) {
        context.codec_tag = MKTAG('h', 'v', 'c', '1');
        libav::setOption(context, "x265-params", x265Parameters(settings));
        return;
    }
    context.profile = FF_PROFILE_H264_HIGH;
    context.thread_count = settings.threads;
    if (hasFixedGop(settings))
        libav::setOption(context, "sc_threshold", "0");
    if (!settings.parameters.empty())
        libav::setOption(context, "x264-params", settings.parameters);
}

} // namespace

VideoEncoder::VideoEncoder(const VideoEncoderSettings& settings)
    : m_state(std::make_unique<State>())
{
    m_state->context = libav::makeEncoder(isHevc(settings) ? "libx265" : "libx264");
    m_state->constantRate = settings.frameRate != 0;
    auto& context = *m_state->context;
    describePictures(context, settings);
    setTimes(context, settings);
    setRate(context, settings);
    setEncoder(context, settings);
    if (settings.globalHeader)
        context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    libav::openEncoder(context);
}

VideoEncoder::~VideoEncoder() = default;

void VideoEncoder::encode(const Picture& picture, MediaTime time, PictureKind kind, const PacketSink& sink)
{
    auto& context = *m_state->context;
    assert(picture.width() == context.width && picture.height() == context.height);
    auto frame = libav::makeFrame();
    libav::check(av_frame_ref(frame.get(), picture.frame()), "No memory for a picture");
    frame->pts = av_rescale_q(time.count(), { 1, MediaTime::period::den }, context.time_base);
    // A decoded picture still says what it was in its own file.
    frame->pict_type = kind == PictureKind::Keyframe ? AV_PICTURE_TYPE_I : AV_PICTURE_TYPE_NONE;
    m_state->encode(frame.get(), sink);
}

void VideoEncoder::finish(const PacketSink& sink)
{
    m_state->encode(nullptr, sink);
}

const AVCodecContext& VideoEncoder::context() const
{
    return *m_state->context;
}

} // namespace vantry
