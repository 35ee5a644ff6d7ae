#pragma once

#include "render/RenderInstruction.h"
#include "render/Renderer.h"

#include <array>
#include <functional>

namespace vantry {

/// A frame composed the plain way, to hold the compositor's against: every pixel by itself, in doubles, in R'G'B', from sources
/// that are functions of a place. Each pixel is the mean of a grid of points.
struct ReferenceFrame {
    using Colour = std::array<double, 3>; ///< Red, green, blue, 0 … 1.
    using Source = std::function<Colour(double x, double y)>; ///< At a place in pixels from the top left.

    struct Sources {
        Size screenSize;
        Source screen;
        Size cameraSize;
        Source camera;
        Size overlaySize;
        std::function<std::array<double, 4>(double x, double y)> overlay; ///< Premultiplied, with alpha.
    };

    ReferenceFrame(const Project& project, const Sources& sources, double time, Size size);

    /// The mean over the pixel.
    Colour at(int x, int y) const;

private:
    Colour atPoint(double x, double y) const;

    Project m_project;
    Sources m_sources;
    double m_time;
    Size m_size;
};

} // namespace vantry
