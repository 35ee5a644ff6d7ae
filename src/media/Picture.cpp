#include "media/Picture.h"

#include "media/Libav.h"

#include <cassert>
#include <cstring>

namespace vantry {

namespace {

constexpr int alignment = 64;

int chroma(int index, int size)
{
    return index == PlaneY ? size : (size + 1) / 2;
}

template <typename Byte>
BasicPlane<Byte> planeOf(const AVFrame& frame, int index)
{
    return { frame.data[index], frame.linesize[index], chroma(index, frame.width), chroma(index, frame.height) };
}

libav::FramePtr describedFrame(int width, int height)
{
    auto frame = libav::makeFrame();
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = width;
    frame->height = height;
    frame->color_range = AVCOL_RANGE_MPEG;
    frame->colorspace = AVCOL_SPC_BT709;
    frame->color_primaries = AVCOL_PRI_BT709;
    frame->color_trc = AVCOL_TRC_BT709;
    frame->chroma_location = AVCHROMA_LOC_CENTER;
    return frame;
}

std::size_t bufferSize(int width, int height)
{
    // The encoders' and our own vector loops may read past the last row's end.
    return static_cast<std::size_t>(av_image_get_buffer_size(AV_PIX_FMT_YUV420P, width, height, alignment)) + 2 * alignment;
}

} // namespace

Picture::Picture(std::shared_ptr<const AVFrame> frame)
    : m_frame(std::move(frame))
{
    assert(m_frame && (m_frame->format == AV_PIX_FMT_YUV420P || m_frame->format == AV_PIX_FMT_YUVJ420P));
}

int Picture::width() const
{
    return m_frame ? m_frame->width : 0;
}

int Picture::height() const
{
    return m_frame ? m_frame->height : 0;
}

Plane Picture::plane(int index) const
{
    return planeOf<const std::uint8_t>(*m_frame, index);
}

PictureBuffer::PictureBuffer(int width, int height)
{
    assert(width % 2 == 0 && height % 2 == 0);
    auto frame = describedFrame(width, height);
    libav::check(av_frame_get_buffer(frame.get(), 0), "No memory for a picture");
    m_frame = std::shared_ptr<AVFrame>(std::move(frame));
}

PictureBuffer::PictureBuffer(std::shared_ptr<AVFrame> frame)
    : m_frame(std::move(frame))
{
}

int PictureBuffer::width() const
{
    return m_frame->width;
}

int PictureBuffer::height() const
{
    return m_frame->height;
}

MutablePlane PictureBuffer::plane(int index)
{
    return planeOf<std::uint8_t>(*m_frame, index);
}

Plane PictureBuffer::plane(int index) const
{
    return planeOf<const std::uint8_t>(*m_frame, index);
}

void PictureBuffer::fill(std::uint8_t y, std::uint8_t cb, std::uint8_t cr)
{
    const std::uint8_t values[] = { y, cb, cr };
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto target = plane(index);
        for (int row = 0; row < target.height; ++row)
            std::memset(target.row(row), values[index], static_cast<std::size_t>(target.width));
    }
}

void PictureBuffer::copyFrom(const Picture& picture)
{
    assert(picture.width() == width() && picture.height() == height());
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto source = picture.plane(index);
        const auto target = plane(index);
        av_image_copy_plane(target.data, static_cast<int>(target.stride), source.data, static_cast<int>(source.stride),
            target.width, target.height);
    }
}

Picture PictureBuffer::share() &&
{
    return Picture(std::move(m_frame));
}

PicturePool::PicturePool(int width, int height)
    : m_width(width)
    , m_height(height)
    , m_pool(av_buffer_pool_init(bufferSize(width, height), nullptr))
{
    assert(width % 2 == 0 && height % 2 == 0);
    if (!m_pool)
        throw std::bad_alloc();
}

PicturePool::~PicturePool()
{
    av_buffer_pool_uninit(&m_pool);
}

PictureBuffer PicturePool::make()
{
    auto frame = describedFrame(m_width, m_height);
    frame->buf[0] = av_buffer_pool_get(m_pool);
    if (!frame->buf[0])
        throw std::bad_alloc();
    libav::check(
        av_image_fill_arrays(frame->data, frame->linesize, frame->buf[0]->data, AV_PIX_FMT_YUV420P, m_width, m_height, alignment),
        "No memory for a picture");
    return PictureBuffer(std::shared_ptr<AVFrame>(std::move(frame)));
}

} // namespace vantry
