#include "platform/CameraFrame.h"

namespace vantry {

namespace {

constexpr int largestSide = 16384;

int planesOf(CameraFormat format)
{
    switch (format) {
    case CameraFormat::Nv12:
        return 2;
    case CameraFormat::I420:
        return 3;
    default:
        return 1;
    }
}

/// What a plane takes from its first byte to its last.
std::size_t bytesOf(CameraPlaneSize size, std::ptrdiff_t stride)
{
    return static_cast<std::size_t>(stride) * static_cast<std::size_t>(size.rows - 1) + size.rowBytes;
}

/// The chroma planes that follow the luma in the same memory are padded as it is.
std::ptrdiff_t strideBehindLuma(const CameraMode& mode, int plane, std::ptrdiff_t lumaStride)
{
    if (lumaStride == 0 || plane == 0)
        return lumaStride;
    return mode.format == CameraFormat::I420 ? (lumaStride + 1) / 2 : lumaStride;
}

/// The plane at the memory's beginning, if all of it is there.
std::optional<CameraMemory> takePlane(CameraPlaneSize size, CameraMemory memory)
{
    const auto stride = memory.stride == 0 ? static_cast<std::ptrdiff_t>(size.rowBytes) : memory.stride;
    if (stride < static_cast<std::ptrdiff_t>(size.rowBytes) || memory.bytes.size() < bytesOf(size, stride))
        return std::nullopt;
    return CameraMemory{ memory.bytes.first(bytesOf(size, stride)), stride };
}

/// Where the plane after this one begins.
CameraMemory behind(CameraMemory memory, const CameraMemory& plane, int rows)
{
    const auto used = std::min(memory.bytes.size(), static_cast<std::size_t>(plane.stride) * static_cast<std::size_t>(rows));
    memory.bytes = memory.bytes.subspan(used);
    return memory;
}

} // namespace

int CameraFrame::planeCount() const
{
    return planesOf(mode.format);
}

CameraPlaneSize planeSize(const CameraMode& mode, int plane)
{
    const auto width = static_cast<std::size_t>(mode.width);
    const auto pairs = (width + 1) / 2;
    switch (mode.format) {
    case CameraFormat::Yuy2:
        return { pairs * 4, mode.height };
    case CameraFormat::Bgrx:
        return { width * 4, mode.height };
    case CameraFormat::Nv12:
        return plane == 0 ? CameraPlaneSize{ width, mode.height } : CameraPlaneSize{ pairs * 2, (mode.height + 1) / 2 };
    case CameraFormat::I420:
        return plane == 0 ? CameraPlaneSize{ width, mode.height } : CameraPlaneSize{ pairs, (mode.height + 1) / 2 };
    case CameraFormat::Mjpg:
        return { 1, 1 };
    }
    return { 1, 1 };
}

std::optional<CameraFrame> findPlanes(const CameraMode& mode, std::span<const CameraMemory> memory, HostTime time)
{
    const auto inside = [](int side) { return side >= 1 && side <= largestSide; };
    if (memory.empty() || !inside(mode.width) || !inside(mode.height))
        return std::nullopt;
    CameraFrame frame{ .mode = mode, .planes = {}, .time = time };
    if (mode.format == CameraFormat::Mjpg) {
        frame.planes[0] = memory[0];
        return memory[0].bytes.empty() ? std::nullopt : std::optional(frame);
    }
    const bool isSplit = std::ssize(memory) >= frame.planeCount();
    CameraMemory rest = memory[0];
    for (int i = 0; i < frame.planeCount(); ++i) {
        const auto size = planeSize(mode, i);
        const CameraMemory from = isSplit ? memory[i] : CameraMemory{ rest.bytes, strideBehindLuma(mode, i, memory[0].stride) };
        const auto plane = takePlane(size, from);
        if (!plane)
            return std::nullopt;
        frame.planes[i] = *plane;
        rest = behind(rest, *plane, size.rows);
    }
    return frame;
}

} // namespace vantry
