#include "media/RawPixels.h"

#include "media/Picture.h"
#include "media/RgbToYuv.h"

#include <cstring>

namespace vantry {

namespace {

void copyPlane(const RawPixels::Plane& from, const MutablePlane& to)
{
    for (int y = 0; y < to.height; ++y)
        std::memcpy(to.row(y), from.row(y), static_cast<std::size_t>(to.width));
}

void takeEverySecond(const std::uint8_t* from, std::uint8_t* to, int count)
{
    for (int x = 0; x < count; ++x)
        to[x] = from[2 * x];
}

/// Cb and Cr in turn.
void splitPairs(const std::uint8_t* from, std::uint8_t* cb, std::uint8_t* cr, int count)
{
    for (int x = 0; x < count; ++x) {
        cb[x] = from[2 * x];
        cr[x] = from[2 * x + 1];
    }
}

/// The mean of two rows of Y Cb Y Cr.
void takeChroma(const std::uint8_t* upper, const std::uint8_t* lower, std::uint8_t* cb, std::uint8_t* cr, int count)
{
    for (int x = 0; x < count; ++x) {
        cb[x] = static_cast<std::uint8_t>((upper[4 * x + 1] + lower[4 * x + 1] + 1) / 2);
        cr[x] = static_cast<std::uint8_t>((upper[4 * x + 3] + lower[4 * x + 3] + 1) / 2);
    }
}

void drawYuy2(const RawPixels::Plane& from, PictureBuffer& target)
{
    const auto luma = target.plane(PlaneY), cb = target.plane(PlaneCb), cr = target.plane(PlaneCr);
    for (int y = 0; y < luma.height; ++y)
        takeEverySecond(from.row(y), luma.row(y), luma.width);
    for (int y = 0; y < cb.height; ++y)
        takeChroma(from.row(2 * y), from.row(2 * y + 1), cb.row(y), cr.row(y), cb.width);
}

void drawNv12(const RawPixels& pixels, PictureBuffer& target)
{
    const auto cb = target.plane(PlaneCb), cr = target.plane(PlaneCr);
    copyPlane(pixels.planes[0], target.plane(PlaneY));
    for (int y = 0; y < cb.height; ++y)
        splitPairs(pixels.planes[1].row(y), cb.row(y), cr.row(y), cb.width);
}

} // namespace

void drawRaw(const RawPixels& pixels, PictureBuffer& target)
{
    switch (pixels.layout) {
    case RawPixels::Layout::Yuy2:
        drawYuy2(pixels.planes[0], target);
        break;
    case RawPixels::Layout::Nv12:
        drawNv12(pixels, target);
        break;
    case RawPixels::Layout::I420:
        for (int index : { PlaneY, PlaneCb, PlaneCr })
            copyPlane(pixels.planes[index], target.plane(index));
        break;
    case RawPixels::Layout::Bgrx: {
        const auto& plane = pixels.planes[0];
        static_cast<void>(drawRgb({ plane.data, plane.stride, target.width(), target.height() }, target, 0, 0));
        return;
    }
    }
    convertColours(target, pixels.colours);
}

} // namespace vantry
