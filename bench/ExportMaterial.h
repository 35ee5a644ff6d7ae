#pragma once

#include "project/Project.h"
#include "render/RenderInstruction.h"

namespace vantry::bench {

inline constexpr int exportClipSeconds = 30;

/// The clip "clip-1.mov" `repeats` times: a part of the screen over the whole frame, the camera in the bubble, for two seconds over
/// the whole frame, one overlay.
Project exportBenchProject(int repeats);

/// The overlay's bitmap.
OverlayImages exportBenchImages(const Project& project);

// The part of the screen that is shown, in pixels of a screen of 1920x1080.
inline constexpr int cropX = 96;
inline constexpr int cropY = 54;
inline constexpr int cropWidth = 1728;
inline constexpr int cropHeight = 972;

// When the layouts change and the overlay shows, in seconds.
inline constexpr double cameraFullFrom = 14;
inline constexpr double cameraFullTo = 16;
inline constexpr double overlayFrom = 5;
inline constexpr double overlayTo = 11;
inline constexpr double overlayX = 0.3;
inline constexpr double overlayY = 0.75;
inline constexpr double overlayWidth = 0.4;

} // namespace vantry::bench
