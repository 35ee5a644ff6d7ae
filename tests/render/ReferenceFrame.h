#pragma once

#include "project/Project.h"
#include "render/Geometry.h"

#include <array>
#include <functional>

namespace vantry {

/// A frame composed the plain way, to hold the compositor's against: every pixel by itself, in doubles, in R'G'B', from sources
/// that are functions of a place.
struct ReferenceFrame {
    using Colour = std::array<double, 3>; ///< Red, green, blue, 0 … 1.
    using Source = std::function<Colour(double x, double y)>; ///< At a place in pixels from the top left.

    /// The mean of a grid of points in the pixel.
    Colour at(int x, int y) const;

    Project project;
    double time;
    Size size;

    Size screenSize;
    Source screen;
    Size cameraSize;
    Source camera;
    Size overlaySize;
    std::function<std::array<double, 4>(double x, double y)> overlay; ///< Premultiplied, with alpha.

private:
    Colour atPoint(double x, double y) const;
};

} // namespace vantry
