#pragma once

#include "media/Picture.h"
#include "render/FixedPoint.h"
#include "render/PersonFinder.h"

#include <cstdint>
#include <vector>

namespace vantry {

/// Blurs what a mask leaves free of one plane, as if its edge samples went on for ever. The Gaussian is taken of the plane made
/// smaller, which nobody can tell after so much blur; it is less than one and a half levels off. One thread at a time.
class PlaneBlur {
public:
    struct Size {
        int width = 0;
        int height = 0;
    };

    /// Colours have less contrast than brightness: they stand a coarser way.
    enum class Detail { Luma, Chroma };

    /// `sigma` is the standard deviation in samples of the plane.
    PlaneBlur(Size plane, Detail detail, double sigma, Size mask);

    /// `blurred` gets the plane's sharp samples where the mask is whole and blurred ones where it is nothing.
    void apply(const Plane& sharp, const SoftMask& mask, const MutablePlane& blurred);

private:
    void shrink(const Plane& plane);
    void blurSmall();
    void blurDown(int row);
    void blurAcross(int row);
    void stretchMask(const SoftMask& mask);
    void blendRow(int row, const Plane& sharp, const MutablePlane& blurred);
    const std::int16_t* stretchedSmall(int row);

    const Size m_plane;
    const Size m_mask;
    int m_factor = 1; ///< A sample of the small plane is the mean of so many in both directions.
    Size m_small; ///< With a border of one sample, which is the mean of the edge's samples alone.
    int m_reach = 0; ///< Of the kernel, to each side.
    std::vector<float> m_kernel; ///< From its middle on.

    std::vector<std::uint16_t> m_sums; ///< Of a few rows, with the border.
    std::vector<float> m_averages; ///< The small plane.
    std::vector<float> m_line; ///< A row of it, with the kernel's reach on both sides.
    std::vector<std::int16_t> m_blurred; ///< The same, blurred, with seven bits behind the point.

    // What lies between the small samples, and between those of the mask.
    std::vector<Between> m_smallColumns;
    std::vector<Between> m_smallRows;
    std::vector<Between> m_maskColumns;
    std::vector<Between> m_maskRows;
    std::vector<Weight> m_wideMask; ///< As wide as the plane, as high as the mask.

    /// Two rows of the blurred small plane in the plane's width, with their numbers.
    struct WideRow {
        int number = -1;
        std::vector<std::int16_t> samples;
    } m_wideRows[2];
};

} // namespace vantry
