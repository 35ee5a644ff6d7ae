#include "capture/ScreenGrabber.h"

#include "media/RgbToYuv.h"

#include <utility>

namespace vantry {

ScreenGrabber::ScreenGrabber(const Display& display, std::vector<pid_t> excludedProcesses)
    : m_reader(display, std::move(excludedProcesses))
    , m_pool(m_reader.width(), m_reader.height())
{
}

std::optional<PictureSample> ScreenGrabber::grab()
{
    const auto reading = m_reader.read();
    if (reading.blocks.empty())
        return std::nullopt;
    auto buffer = m_pool.make();
    bool changed = !m_picture;
    if (m_picture)
        buffer.copyFrom(m_picture);
    for (const auto& block : reading.blocks) {
        const RgbPixels pixels{ block.data, block.stride(), block.area.width, block.area.height };
        changed |= drawRgb(pixels, buffer, block.area.x, block.area.y);
    }
    // What was painted again as it was before is no change.
    if (!changed)
        return std::nullopt;
    m_picture = std::move(buffer).share();
    return PictureSample{ m_picture, reading.time };
}

} // namespace vantry
