#pragma once

#include "platform/CameraFrame.h"

#include <cstdint>
#include <optional>
#include <vector>

struct spa_pod;

namespace vantry {

/// What we ask of a camera, the most wanted first, in the media server's form. The server takes the first that the camera can do.
class CameraOffers {
public:
    CameraOffers();

    std::vector<const spa_pod*>& list() { return m_list; }

private:
    std::vector<std::uint8_t> m_memory;
    std::vector<const spa_pod*> m_list;
};

/// What a camera agreed to. Nothing when it is none of what was offered.
std::optional<CameraMode> cameraMode(const spa_pod& format);

} // namespace vantry
