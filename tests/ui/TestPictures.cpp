#include "ui/TestPictures.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace vantry::test {

namespace {

constexpr int block = 40;

int eightBits(double value)
{
    return static_cast<int>(std::lround(255 * std::clamp(value, 0.0, 1.0)));
}

} // namespace

Picture colouredNoise(int width, int height)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<int> brightness(16, 235);
    PictureBuffer picture(width, height);
    const auto luma = picture.plane(PlaneY);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            luma.row(y)[x] = static_cast<std::uint8_t>(brightness(random));
    for (const int index : { PlaneCb, PlaneCr }) {
        const auto chroma = picture.plane(index);
        for (int y = 0; y < chroma.height; ++y)
            for (int x = 0; x < chroma.width; ++x)
                chroma.row(y)[x] =
                    static_cast<std::uint8_t>(16 + (x / (block / 2) * 59 + y / (block / 2) * 101 + index * 40) % 225);
    }
    return std::move(picture).share();
}

QColor colourAt(const Picture& picture, int x, int y)
{
    const double luma = (picture.plane(PlaneY).row(y)[x] - 16) / 219.0;
    const double cb = (picture.plane(PlaneCb).row(y / 2)[x / 2] - 128) / 224.0;
    const double cr = (picture.plane(PlaneCr).row(y / 2)[x / 2] - 128) / 224.0;
    const double red = luma + 2 * (1 - 0.2126) * cr;
    const double blue = luma + 2 * (1 - 0.0722) * cb;
    const double green = (luma - 0.2126 * red - 0.0722 * blue) / 0.7152;
    return { eightBits(red), eightBits(green), eightBits(blue) };
}

bool isInsideBlock(int x, int y)
{
    const auto isInside = [](int place) { return place % block >= 2 && place % block < block - 2; };
    return isInside(x) && isInside(y);
}

} // namespace vantry::test
