#include "capture/CameraPictures.h"

#include "base/AppError.h"
#include "base/Log.h"
#include "media/JpegDecoder.h"
#include "media/RawPixels.h"

#include <algorithm>
#include <optional>

namespace vantry {

namespace {

constexpr int mostWaitingFrames = 2;

RawPixels::Layout layoutOf(CameraFormat format)
{
    switch (format) {
    case CameraFormat::Nv12:
        return RawPixels::Layout::Nv12;
    case CameraFormat::I420:
        return RawPixels::Layout::I420;
    case CameraFormat::Bgrx:
        return RawPixels::Layout::Bgrx;
    default:
        return RawPixels::Layout::Yuy2;
    }
}

/// A camera that says nothing of its colours is taken to have ours.
YuvColours coloursOf(const CameraMode& mode)
{
    return { .matrix = mode.colours == CameraColours::Bt601 ? YuvColours::Matrix::Bt601 : YuvColours::Matrix::Bt709,
        .range = mode.range == CameraRange::Full ? YuvColours::Range::Full : YuvColours::Range::Limited };
}

RawPixels pixelsOf(const CameraFrame& frame)
{
    RawPixels pixels{ .layout = layoutOf(frame.mode.format), .colours = coloursOf(frame.mode), .planes = {} };
    std::ranges::transform(frame.planes, pixels.planes.begin(), [](const CameraMemory& plane) {
        return RawPixels::Plane{ plane.bytes.data(), plane.stride };
    });
    return pixels;
}

/// The same frame in memory of its own.
CameraFrame copyInto(std::vector<std::uint8_t>& memory, CameraFrame frame)
{
    memory.clear();
    for (const auto& plane : frame.planes)
        memory.insert(memory.end(), plane.bytes.begin(), plane.bytes.end());
    std::size_t offset = 0;
    for (auto& plane : frame.planes) {
        plane.bytes = std::span<const std::uint8_t>(memory).subspan(offset, plane.bytes.size());
        offset += plane.bytes.size();
    }
    return frame;
}

} // namespace

class CameraPictures::Converter {
public:
    /// Throws AppError when the frame is damaged. Odd sizes lose their last row or column.
    Picture convert(const CameraFrame& frame)
    {
        if (frame.mode.format == CameraFormat::Mjpg)
            return jpegDecoder().decode(frame.planes[0].bytes);
        const int width = frame.mode.width & ~1, height = frame.mode.height & ~1;
        if (width == 0 || height == 0)
            throw AppError("The camera's pictures are too small");
        if (!m_pool || m_pool->width() != width || m_pool->height() != height)
            m_pool.emplace(width, height);
        auto picture = m_pool->make();
        drawRaw(pixelsOf(frame), picture);
        return std::move(picture).share();
    }

private:
    JpegDecoder& jpegDecoder() { return m_jpegDecoder ? *m_jpegDecoder : m_jpegDecoder.emplace(); }

    std::optional<JpegDecoder> m_jpegDecoder;
    std::optional<PicturePool> m_pool;
};

CameraPictures::CameraPictures(Handler handler)
    : m_handler(std::move(handler))
    , m_converter(std::make_unique<Converter>())
{
}

CameraPictures::~CameraPictures() = default;

void CameraPictures::take(const CameraFrame& frame)
{
    if (m_waiting >= mostWaitingFrames)
        return;
    ++m_waiting;
    // A job can be copied, and must not copy the pixels.
    const auto memory = std::make_shared<Memory>(unusedMemory());
    m_worker.post([this, memory, copy = copyInto(*memory, frame)] {
        convert(copy);
        const std::lock_guard guard(m_mutex);
        m_unused.push_back(std::move(*memory));
        --m_waiting;
    });
}

CameraPictures::Memory CameraPictures::unusedMemory()
{
    const std::lock_guard guard(m_mutex);
    if (m_unused.empty())
        return {};
    auto memory = std::move(m_unused.back());
    m_unused.pop_back();
    return memory;
}

void CameraPictures::convert(const CameraFrame& frame)
{
    try {
        m_handler({ m_converter->convert(frame), frame.time });
    } catch (const std::exception& error) {
        qCInfo(logCapture, "a frame of the camera was left out: %s", error.what());
    }
}

} // namespace vantry
