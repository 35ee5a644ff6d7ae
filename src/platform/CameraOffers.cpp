#include "platform/CameraOffers.h"

#include <spa/param/video/format-utils.h>

namespace vantry {

namespace {

/// From the best to the least; a camera that has none of them may still choose its own.
constexpr spa_rectangle wantedSizes[] = { { 1920, 1080 }, { 1280, 720 }, { 1600, 900 }, { 1920, 1200 }, { 1280, 960 },
    { 1280, 800 }, { 1024, 768 }, { 1024, 576 }, { 960, 720 }, { 960, 540 }, { 800, 600 }, { 640, 480 }, { 640, 360 } };
constexpr spa_rectangle smallest{ 1, 1 };
constexpr spa_rectangle largest{ 4096, 4096 };

struct Rates {
    spa_fraction wanted;
    spa_fraction from;
    spa_fraction to;
};
constexpr Rates thirty{ { 30, 1 }, { 30, 1 }, { 30, 1 } };
constexpr Rates nearThirty{ { 30, 1 }, { 24, 1 }, { 60, 1 } };
constexpr Rates any{ { 30, 1 }, { 0, 1 }, { 240, 1 } };

class OfferBuilder {
public:
    OfferBuilder(std::vector<std::uint8_t>& memory, std::vector<const spa_pod*>& list)
        : m_builder(SPA_POD_BUILDER_INIT(memory.data(), static_cast<std::uint32_t>(memory.size())))
        , m_list(list)
    {
    }

    /// Packed pictures before JPEG images, which have to be decoded.
    void offer(const spa_rectangle* size, const Rates& rates)
    {
        for (auto subtype : { SPA_MEDIA_SUBTYPE_raw, SPA_MEDIA_SUBTYPE_mjpg })
            add(subtype, size, rates);
    }

private:
    void add(std::uint32_t subtype, const spa_rectangle* size, const Rates& rates)
    {
        spa_pod_frame object;
        spa_pod_builder_push_object(&m_builder, &object, SPA_TYPE_OBJECT_Format, SPA_PARAM_EnumFormat);
        spa_pod_builder_add(
            &m_builder, SPA_FORMAT_mediaType, SPA_POD_Id(SPA_MEDIA_TYPE_video), SPA_FORMAT_mediaSubtype, SPA_POD_Id(subtype), 0);
        if (subtype == SPA_MEDIA_SUBTYPE_raw)
            spa_pod_builder_add(&m_builder, SPA_FORMAT_VIDEO_format,
                SPA_POD_CHOICE_ENUM_Id(5, SPA_VIDEO_FORMAT_I420, SPA_VIDEO_FORMAT_I420, SPA_VIDEO_FORMAT_NV12,
                    SPA_VIDEO_FORMAT_YUY2, SPA_VIDEO_FORMAT_BGRx),
                0);
        if (size)
            spa_pod_builder_add(&m_builder, SPA_FORMAT_VIDEO_size, SPA_POD_Rectangle(size), 0);
        else
            spa_pod_builder_add(
                &m_builder, SPA_FORMAT_VIDEO_size, SPA_POD_CHOICE_RANGE_Rectangle(&wantedSizes[0], &smallest, &largest), 0);
        spa_pod_builder_add(
            &m_builder, SPA_FORMAT_VIDEO_framerate, SPA_POD_CHOICE_RANGE_Fraction(&rates.wanted, &rates.from, &rates.to), 0);
        if (const auto* pod = static_cast<const spa_pod*>(spa_pod_builder_pop(&m_builder, &object)))
            m_list.push_back(pod);
    }

    spa_pod_builder m_builder;
    std::vector<const spa_pod*>& m_list;
};

std::optional<CameraFormat> formatOf(std::uint32_t format)
{
    switch (format) {
    case SPA_VIDEO_FORMAT_YUY2:
        return CameraFormat::Yuy2;
    case SPA_VIDEO_FORMAT_NV12:
        return CameraFormat::Nv12;
    case SPA_VIDEO_FORMAT_I420:
        return CameraFormat::I420;
    case SPA_VIDEO_FORMAT_BGRx:
        return CameraFormat::Bgrx;
    default:
        return std::nullopt;
    }
}

CameraColours coloursOf(spa_video_color_matrix matrix)
{
    switch (matrix) {
    case SPA_VIDEO_COLOR_MATRIX_BT601:
        return CameraColours::Bt601;
    case SPA_VIDEO_COLOR_MATRIX_BT709:
        return CameraColours::Bt709;
    default:
        return CameraColours::Unknown;
    }
}

CameraRange rangeOf(spa_video_color_range range)
{
    switch (range) {
    case SPA_VIDEO_COLOR_RANGE_0_255:
        return CameraRange::Full;
    case SPA_VIDEO_COLOR_RANGE_16_235:
        return CameraRange::Limited;
    default:
        return CameraRange::Unknown;
    }
}

CameraMode modeOf(CameraFormat format, spa_rectangle size, spa_fraction rate)
{
    return { .format = format,
        .width = static_cast<int>(size.width),
        .height = static_cast<int>(size.height),
        .framesPerSecond = rate.denom ? double(rate.num) / rate.denom : 0 };
}

} // namespace

CameraOffers::CameraOffers()
    : m_memory(64 * 1024)
{
    OfferBuilder builder(m_memory, m_list);
    for (const auto& size : wantedSizes) {
        builder.offer(&size, thirty);
        builder.offer(&size, nearThirty);
    }
    builder.offer(nullptr, nearThirty);
    builder.offer(nullptr, any);
}

std::optional<CameraMode> cameraMode(const spa_pod& format)
{
    std::uint32_t type = 0, subtype = 0;
    if (spa_format_parse(&format, &type, &subtype) < 0 || type != SPA_MEDIA_TYPE_video)
        return std::nullopt;
    if (subtype == SPA_MEDIA_SUBTYPE_mjpg) {
        spa_video_info_mjpg info{};
        if (spa_format_video_mjpg_parse(&format, &info) < 0)
            return std::nullopt;
        return modeOf(CameraFormat::Mjpg, info.size, info.framerate);
    }
    spa_video_info_raw info{};
    if (subtype != SPA_MEDIA_SUBTYPE_raw || spa_format_video_raw_parse(&format, &info) < 0 || !formatOf(info.format))
        return std::nullopt;
    auto mode = modeOf(*formatOf(info.format), info.size, info.framerate);
    mode.colours = coloursOf(info.color_matrix);
    mode.range = rangeOf(info.color_range);
    return mode;
}

} // namespace vantry
