#pragma once

#include "base/HostTime.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace vantry {

/// How a camera puts its pictures into memory. Where chroma is subsampled, odd sizes are rounded up.
enum class CameraFormat {
    Yuy2, ///< Y Cb Y Cr, two pixels at a time.
    Nv12, ///< A plane of Y, one of Cb and Cr in turn with half the size.
    I420, ///< A plane each of Y, Cb and Cr.
    Bgrx, ///< Blue, green, red, and a byte without meaning.
    Mjpg, ///< A JPEG image.
};

/// How a camera's Y, Cb and Cr were made from colours, where it says so.
enum class CameraColours { Unknown, Bt601, Bt709 };
enum class CameraRange { Unknown, Limited, Full };

/// What a camera has agreed to deliver.
struct CameraMode {
    CameraFormat format = CameraFormat::Yuy2;
    int width = 0;
    int height = 0;
    double framesPerSecond = 0; ///< 0 where it is not constant.
    CameraColours colours = CameraColours::Unknown;
    CameraRange range = CameraRange::Unknown;

    bool operator==(const CameraMode&) const = default;
};

/// A stretch of memory as a camera hands it over. A stride of 0 means that rows follow each other without padding.
struct CameraMemory {
    std::span<const std::uint8_t> bytes;
    std::ptrdiff_t stride = 0; ///< Bytes from row to row.
};

/// One picture of a camera in somebody else's memory, which is there until the handler returns that got it.
struct CameraFrame {
    CameraMode mode;
    std::array<CameraMemory, 3>
        planes; ///< As many as the format has; each has all its rows. Of a JPEG image the first has all of it.
    HostTime time; ///< When it was taken.

    int planeCount() const;
};

/// Bytes of one row of a plane, without padding, and the number of its rows.
struct CameraPlaneSize {
    std::size_t rowBytes;
    int rows;
};
CameraPlaneSize planeSize(const CameraMode&, int plane);

/// Finds the planes in memory, one stretch for each or all in one. Nothing when any row of them would lie outside.
std::optional<CameraFrame> findPlanes(const CameraMode&, std::span<const CameraMemory>, HostTime);

} // namespace vantry
