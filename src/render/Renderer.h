#pragma once

#include "project/ProjectIndex.h"
#include "render/Geometry.h"

#include <optional>

namespace vantry {

/// Where and how the camera's image is drawn at one instant. In output pixels, origin at the bottom left, y upwards.
struct Placement {
    Rect rect;
    double radius = 0; ///< Of the corners: half the side for a round bubble, 0 for the full frame.
    double opacity = 1;

    bool operator==(const Placement&) const = default;
};

/// Where and how an overlay is drawn at one instant. In output pixels, origin at the bottom left, y upwards.
struct OverlayPlacement {
    Rect rect;
    double opacity = 1;

    bool operator==(const OverlayPlacement&) const = default;
};

/// The geometry of a frame: pure, exact, and shared by the compositor and every view that draws the bubble.
namespace Renderer {

/// The width of the white ring around a bubble, as a fraction of the frame's height, and the radius in pixels from which on there
/// is one.
inline constexpr double ringWidth = 0.005;
inline constexpr double ringThreshold = 2;

/// At this opacity or less the camera is not drawn.
inline constexpr double leastCameraOpacity = 0.01;

/// The distance of the bubble from its corner's edges, as a fraction of the frame's height.
inline constexpr double bubbleMargin = 0.04;

/// How long a change of the layout takes, in seconds.
inline constexpr double transition = 0.4;

/// Where the camera is at `time`, with the layout that is in force then.
Placement cameraPlacement(double time, const ProjectIndex::LayoutInForce& layout, double bubbleSize, Size size);

/// The same for a single look at a project.
Placement cameraPlacement(double time, const Project& project, Size size);

/// Where an image of `image` pixels is drawn for `overlay` at `time`; nothing while the overlay is not shown.
std::optional<OverlayPlacement> overlayPlacement(double time, const Overlay& overlay, Size image, Size size);

/// The part of a screen recording of `screen` pixels that is shown: in its pixels, y downwards, nothing beyond its edges.
Rect cropped(Size screen, const std::optional<CropRect>& crop);

/// Where content of `content` pixels lands when it is fitted whole and centred into the frame.
Rect fitted(Size content, Size size);

/// The part of an image of `image` pixels, in its pixels, that fills a rectangle of `rect` when the longer side is cut.
Rect filling(Size image, Size rect);

} // namespace Renderer

} // namespace vantry
