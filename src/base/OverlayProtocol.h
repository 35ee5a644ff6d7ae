#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>

// What the application and its helper `vantry-overlays` say to each other over one socket. The helper says once that it has
// started. Then the application sends a request and waits for its reply before the next one. Both programs come from one build and
// run on one machine, so numbers travel as they lie in memory. Everything is in this header: the helper is built without any other
// part of the application.
namespace vantry::overlays {

/// The first that the helper sends.
inline constexpr std::uint32_t startedWord = 0x59444552;

/// Followed by the fragment in UTF-8.
struct Request {
    std::uint64_t fragmentBytes = 0;
    double cssWidth = 0;
};

enum class Outcome : std::uint32_t {
    Rendered,
    Refused, ///< Beyond the limits below.
    Failed, ///< The engine could not load or measure it.
    TimedOut,
    EngineDied,
};

/// Followed by the pixels when it was rendered: 32 bits each, in memory blue, green, red, alpha, premultiplied, rows from the top
/// and tight.
struct Reply {
    Outcome outcome = Outcome::Failed;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

/// Bitmap pixels for a CSS pixel, so that overlays stay sharp.
inline constexpr int scale = 2;

inline constexpr std::size_t largestFragment = 1'500'000; // bytes
inline constexpr double largestWidth = 4096; // CSS pixels
inline constexpr int largestHeight = 4096; // CSS pixels; what is below is cut off
inline constexpr std::int64_t largestBitmap = 4 * 1920 * 1080; // pixels: one that fills the frame; what is below is cut off

/// After this time the helper gives a fragment up.
inline constexpr std::chrono::seconds longestRender{ 4 };

inline bool isWithinLimits(const Request& request)
{
    return request.fragmentBytes <= largestFragment && request.cssWidth >= 1 && request.cssWidth <= largestWidth;
}

inline int bitmapWidth(double cssWidth)
{
    return static_cast<int>(std::lround(scale * cssWidth));
}

/// How high a bitmap of this width may be, in CSS pixels.
inline int heightLimit(double cssWidth)
{
    const auto rows = largestBitmap / std::max(bitmapWidth(cssWidth), 1);
    return static_cast<int>(std::clamp<std::int64_t>(rows / scale, 1, largestHeight));
}

} // namespace vantry::overlays
