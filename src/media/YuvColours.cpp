#include "media/YuvColours.h"

#include "media/Picture.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace vantry {

namespace {

/// Shares of red and blue in the luma.
struct Weights {
    double red;
    double blue;
};
constexpr Weights bt709{ 0.2126, 0.0722 };
constexpr Weights bt601{ 0.299, 0.114 };

constexpr int fractionBits = 14;
constexpr int half = 1 << (fractionBits - 1);

int fixed(double factor)
{
    return static_cast<int>(std::lround(factor * (1 << fractionBits)));
}

/// Grey stays grey: luma has no part in the new chroma. Offsets are taken off and put on outside.
struct Factors {
    int lumaOfLuma, lumaOfCb, lumaOfCr;
    int cbOfCb, cbOfCr;
    int crOfCb, crOfCr;
    int black; ///< The luma that the source has for it.
};

Factors factorsFrom(YuvColours colours)
{
    const bool isFull = colours.range == YuvColours::Range::Full;
    const Weights from = colours.matrix == YuvColours::Matrix::Bt709 ? bt709 : bt601;
    const double fromGreen = 1 - from.red - from.blue;
    const double toGreen = 1 - bt709.red - bt709.blue;
    const double lumaScale = isFull ? 219.0 / 255 : 1;
    const double chromaScale = isFull ? 224.0 / 255 : 1;
    // Colour differences of a source chroma of 1, luma 0: what each component is made of, then what the new ones make of it.
    const double blueOfCb = 2 * (1 - from.blue), redOfCr = 2 * (1 - from.red);
    const double greenOfCb = -blueOfCb * from.blue / fromGreen, greenOfCr = -redOfCr * from.red / fromGreen;
    const double lumaOfCb = toGreen * greenOfCb + bt709.blue * blueOfCb;
    const double lumaOfCr = toGreen * greenOfCr + bt709.red * redOfCr;
    const double blueDivisor = 2 * (1 - bt709.blue), redDivisor = 2 * (1 - bt709.red);
    // Luma has 219 steps where chroma has 224.
    const double steps = 219.0 / 224;
    return { .lumaOfLuma = fixed(lumaScale),
        .lumaOfCb = fixed(lumaOfCb * chromaScale * steps),
        .lumaOfCr = fixed(lumaOfCr * chromaScale * steps),
        .cbOfCb = fixed((blueOfCb - lumaOfCb) / blueDivisor * chromaScale),
        .cbOfCr = fixed(-lumaOfCr / blueDivisor * chromaScale),
        .crOfCb = fixed(-lumaOfCb / redDivisor * chromaScale),
        .crOfCr = fixed((redOfCr - lumaOfCr) / redDivisor * chromaScale),
        .black = isFull ? 0 : 16 };
}

std::uint8_t sample(int value)
{
    return static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

/// One row of chroma, and what it adds to the luma of its pixels.
void convertChroma(std::uint8_t* cb, std::uint8_t* cr, int* lumaShare, int width, Factors factors)
{
    const int luma = half - factors.lumaOfLuma * factors.black + (16 << fractionBits);
    const int chroma = half + (128 << fractionBits);
    for (int x = 0; x < width; ++x) {
        const int b = cb[x] - 128, r = cr[x] - 128;
        lumaShare[x] = luma + factors.lumaOfCb * b + factors.lumaOfCr * r;
        cb[x] = sample((chroma + factors.cbOfCb * b + factors.cbOfCr * r) >> fractionBits);
        cr[x] = sample((chroma + factors.crOfCb * b + factors.crOfCr * r) >> fractionBits);
    }
}

void convertLuma(std::uint8_t* luma, const int* share, int pairs, int factor)
{
    for (int x = 0; x < pairs; ++x) {
        luma[2 * x] = sample((factor * luma[2 * x] + share[x]) >> fractionBits);
        luma[2 * x + 1] = sample((factor * luma[2 * x + 1] + share[x]) >> fractionBits);
    }
}

} // namespace

void convertColours(PictureBuffer& picture, YuvColours from)
{
    if (from == YuvColours())
        return;
    const auto factors = factorsFrom(from);
    const auto luma = picture.plane(PlaneY), cb = picture.plane(PlaneCb), cr = picture.plane(PlaneCr);
    std::vector<int> lumaShare(static_cast<std::size_t>(cb.width));
    for (int y = 0; y < cb.height; ++y) {
        convertChroma(cb.row(y), cr.row(y), lumaShare.data(), cb.width, factors);
        convertLuma(luma.row(2 * y), lumaShare.data(), cb.width, factors.lumaOfLuma);
        convertLuma(luma.row(2 * y + 1), lumaShare.data(), cb.width, factors.lumaOfLuma);
    }
}

} // namespace vantry
