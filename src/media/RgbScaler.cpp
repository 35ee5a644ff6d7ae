#include "media/RgbScaler.h"

#include "media/Libav.h"

#include <algorithm>
#include <array>

namespace vantry {

namespace {

constexpr const char* failure = "Cannot show the picture";
constexpr int limitedRange = 0;
constexpr int fullRange = 1;
constexpr int neutral = 1 << 16; ///< Contrast and saturation as they are.

int toEven(double length)
{
    return static_cast<int>(length / 2) * 2;
}

/// The largest part of a picture that has the shape of `pixels`. Even, for the chroma planes have half the size.
PictureSize coveringPart(PictureSize picture, PictureSize pixels)
{
    const double scale = std::min(double(picture.width) / pixels.width, double(picture.height) / pixels.height);
    return { std::clamp(toEven(pixels.width * scale), 2, picture.width),
        std::clamp(toEven(pixels.height * scale), 2, picture.height) };
}

} // namespace

struct RgbScaler::State {
    libav::ScalerPtr scaler;
};

RgbScaler::RgbScaler()
    : m_state(std::make_unique<State>())
{
}

RgbScaler::~RgbScaler() = default;

void RgbScaler::cover(const MutableRgbPixels& pixels, const Picture& picture)
{
    if (pixels.size.width <= 0 || pixels.size.height <= 0)
        throw AppError(std::string(failure) + ": There is no room");
    const PictureSize part = coveringPart({ picture.width(), picture.height() }, pixels.size);
    auto& scaler = m_state->scaler;
    scaler.reset(sws_getCachedContext(scaler.release(), part.width, part.height, AV_PIX_FMT_YUV420P, pixels.size.width,
        pixels.size.height, AV_PIX_FMT_BGRA, SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (!scaler)
        throw std::bad_alloc();
    const int* colours = sws_getCoefficients(SWS_CS_ITU709);
    sws_setColorspaceDetails(scaler.get(), colours, limitedRange, colours, fullRange, 0, neutral, neutral);

    const int left = (picture.width() - part.width) / 4 * 2;
    const int top = (picture.height() - part.height) / 4 * 2;
    std::array<const std::uint8_t*, 3> from{};
    std::array<int, 3> fromStrides{};
    for (const int index : { PlaneY, PlaneCb, PlaneCr }) {
        const int shift = index == PlaneY ? 0 : 1;
        const Plane plane = picture.plane(index);
        from[index] = plane.row(top >> shift) + (left >> shift);
        fromStrides[index] = static_cast<int>(plane.stride);
    }
    std::uint8_t* const to[]{ pixels.data };
    const int toStrides[]{ static_cast<int>(pixels.stride) };
    libav::check(sws_scale(scaler.get(), from.data(), fromStrides.data(), 0, part.height, to, toStrides), failure);
}

} // namespace vantry
