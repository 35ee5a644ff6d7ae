#pragma once

#include "capture/Sample.h"
#include "platform/ScreenReader.h"

#include <optional>
#include <sys/types.h>
#include <vector>

namespace vantry {

/// Makes pictures of one display. Only what changed is read and converted, into a copy of the picture before. Belongs to one
/// thread.
class ScreenGrabber {
public:
    /// Throws AppError when the display cannot be recorded.
    ScreenGrabber(const Display&, std::vector<pid_t> excludedProcesses);

    int width() const { return m_pool.width(); }
    int height() const { return m_pool.height(); }

    /// A new picture when the display looks different from the last one, and the first time. Throws AppError when it cannot be
    /// recorded any more.
    std::optional<PictureSample> grab();

private:
    ScreenReader m_reader;
    PicturePool m_pool;
    Picture m_picture;
};

} // namespace vantry
