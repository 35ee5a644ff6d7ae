#include "media/YuvToRgb.h"

#include <algorithm>
#include <bit>

namespace vantry {

static_assert(std::endian::native == std::endian::little);

namespace {

constexpr int fractionBits = 14;
constexpr int half = 1 << (fractionBits - 1);

constexpr int fixed(double factor)
{
    return static_cast<int>(factor * (1 << fractionBits) + (factor < 0 ? -0.5 : 0.5));
}

constexpr double lumaScale = 255.0 / 219;
constexpr double chromaScale = 255.0 / 224;
constexpr double redWeight = 0.2126, blueWeight = 0.0722, greenWeight = 1 - redWeight - blueWeight;
constexpr int ofLuma = fixed(lumaScale);
constexpr int redOfCr = fixed(2 * (1 - redWeight) * chromaScale);
constexpr int blueOfCb = fixed(2 * (1 - blueWeight) * chromaScale);
constexpr int greenOfCr = fixed(-2 * (1 - redWeight) * redWeight / greenWeight * chromaScale);
constexpr int greenOfCb = fixed(-2 * (1 - blueWeight) * blueWeight / greenWeight * chromaScale);

std::uint32_t channel(int value)
{
    return static_cast<std::uint32_t>(std::clamp(value >> fractionBits, 0, 255));
}

} // namespace

void convertToRgb(const std::array<Plane, 3>& samples, const MutableRgbPixels& pixels)
{
    for (int y = 0; y < pixels.size.height; ++y) {
        const std::uint8_t* luma = samples[PlaneY].row(y);
        const std::uint8_t* cb = samples[PlaneCb].row(y);
        const std::uint8_t* cr = samples[PlaneCr].row(y);
        auto* to = reinterpret_cast<std::uint32_t*>(pixels.data + y * pixels.stride);
        for (int x = 0; x < pixels.size.width; ++x) {
            const int grey = ofLuma * (luma[x] - 16) + half, b = cb[x] - 128, r = cr[x] - 128;
            to[x] = 0xFF000000U | channel(grey + redOfCr * r) << 16 | channel(grey + greenOfCb * b + greenOfCr * r) << 8
                | channel(grey + blueOfCb * b);
        }
    }
}

} // namespace vantry
