#include "media/PictureConverter.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <array>

namespace vantry {

namespace {

constexpr int limitedRange = 0;
constexpr int fullRange = 1;
constexpr int neutral = 1 << 16; ///< Contrast and saturation as they are.
constexpr int centredChroma = 128;

bool isRgb(int format)
{
    return av_pix_fmt_desc_get(static_cast<AVPixelFormat>(format))->flags & AV_PIX_FMT_FLAG_RGB;
}

/// The formats that say by their own name that their range is full; the library wants the plain ones.
int withoutRange(int format)
{
    switch (format) {
    case AV_PIX_FMT_YUVJ420P:
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P:
        return AV_PIX_FMT_YUV444P;
    default:
        return format;
    }
}

bool isFullRange(int format, AVColorRange range)
{
    return isRgb(format) || range == AVCOL_RANGE_JPEG || withoutRange(format) != format;
}

/// Untagged pictures are taken for BT.709, as high-definition video is.
int coefficients(AVColorSpace colours)
{
    return colours == AVCOL_SPC_UNSPECIFIED || colours == AVCOL_SPC_RGB ? SWS_CS_ITU709 : static_cast<int>(colours);
}

bool isOurs(const AVFrame& frame)
{
    return frame.format == AV_PIX_FMT_YUV420P && frame.color_range != AVCOL_RANGE_JPEG
        && coefficients(frame.colorspace) == SWS_CS_ITU709 && frame.width % 2 == 0 && frame.height % 2 == 0;
}

void set(SwsContext* scaler, const char* option, std::int64_t value)
{
    libav::check(av_opt_set_int(scaler, option, value, 0), "Cannot convert the pictures");
}

} // namespace

Picture PictureConverter::convert(libav::FramePtr frame)
{
    if (isOurs(*frame))
        return Picture(std::shared_ptr<AVFrame>(std::move(frame)));
    prepare({ frame->width, frame->height, frame->format, frame->colorspace, frame->color_range });
    auto picture = m_pool->make();
    std::array<std::uint8_t*, 3> planes{};
    std::array<int, 3> strides{};
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        planes[index] = picture.plane(index).data;
        strides[index] = static_cast<int>(picture.plane(index).stride);
    }
    libav::check(sws_scale(m_scaler.get(), frame->data, frame->linesize, 0, frame->height, planes.data(), strides.data()),
        "Cannot convert the pictures");
    return std::move(picture).share();
}

void PictureConverter::prepare(const Source& source)
{
    if (m_scaler && m_source == source)
        return;
    m_pool.emplace(std::max(source.width & ~1, 2), std::max(source.height & ~1, 2));
    m_scaler.reset(sws_alloc_context());
    if (!m_scaler)
        throw std::bad_alloc();
    set(m_scaler.get(), "srcw", source.width);
    set(m_scaler.get(), "srch", source.height);
    set(m_scaler.get(), "src_format", withoutRange(source.format));
    set(m_scaler.get(), "dstw", m_pool->width());
    set(m_scaler.get(), "dsth", m_pool->height());
    set(m_scaler.get(), "dst_format", AV_PIX_FMT_YUV420P);
    set(m_scaler.get(), "dst_h_chr_pos", centredChroma);
    set(m_scaler.get(), "dst_v_chr_pos", centredChroma);
    set(m_scaler.get(), "sws_flags", SWS_BILINEAR | SWS_ACCURATE_RND | SWS_FULL_CHR_H_INP);
    const int from = isFullRange(source.format, source.range) ? fullRange : limitedRange;
    sws_setColorspaceDetails(m_scaler.get(), sws_getCoefficients(coefficients(source.colours)), from,
        sws_getCoefficients(SWS_CS_ITU709), limitedRange, 0, neutral, neutral);
    libav::check(sws_init_context(m_scaler.get(), nullptr, nullptr), "Cannot convert the pictures");
    m_source = source;
}

} // namespace vantry
