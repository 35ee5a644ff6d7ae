#include "capture/CameraPreview.h"

namespace vantry {

std::optional<PictureSample> CameraPreview::latest() const
{
    const std::lock_guard guard(m_mutex);
    return m_latest;
}

void CameraPreview::setOnChange(std::function<void()> handler)
{
    const std::lock_guard guard(m_handlerMutex);
    m_onChange = std::move(handler);
}

void CameraPreview::set(std::optional<PictureSample> sample)
{
    {
        const std::lock_guard guard(m_mutex);
        m_latest.swap(sample);
    }
    const std::lock_guard guard(m_handlerMutex);
    if (m_onChange)
        m_onChange();
}

} // namespace vantry
