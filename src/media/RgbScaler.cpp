#include "media/RgbScaler.h"

#include "media/Libav.h"

#include <algorithm>
#include <array>
#include <vector>

namespace vantry {

namespace {

constexpr const char* failure = "Cannot show the picture";

void requireRoom(PictureSize size)
{
    if (size.width <= 0 || size.height <= 0)
        throw AppError(std::string(failure) + ": There is no room");
}

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
    std::vector<std::uint8_t> memory; ///< Of the planes.
    std::array<MutablePlane, 3> planes; ///< A sample of each for every pixel.

    void makeRoom(PictureSize size);
};

void RgbScaler::State::makeRoom(PictureSize size)
{
    // The scaler writes whole vectors, also where a row ends.
    constexpr std::size_t alignment = 64;
    const std::size_t stride = (static_cast<std::size_t>(size.width) + 2 * alignment - 1) / alignment * alignment;
    const std::size_t bytes = stride * static_cast<std::size_t>(size.height);
    memory.resize(planes.size() * bytes + alignment);
    for (std::size_t i = 0; i < planes.size(); ++i)
        planes[i] = { memory.data() + i * bytes, static_cast<std::ptrdiff_t>(stride), size.width, size.height };
}

RgbScaler::RgbScaler()
    : m_state(std::make_unique<State>())
{
}

RgbScaler::~RgbScaler() = default;

void RgbScaler::cover(const MutableRgbPixels& pixels, const Picture& picture)
{
    requireRoom(pixels.size);
    draw(pixels, picture, coveringPart({ picture.width(), picture.height() }, pixels.size));
}

void RgbScaler::fill(const MutableRgbPixels& pixels, const Picture& picture)
{
    requireRoom(pixels.size);
    draw(pixels, picture, { picture.width(), picture.height() });
}

/// Of the picture it shows the middle.
void RgbScaler::draw(const MutableRgbPixels& pixels, const Picture& picture, PictureSize part)
{
    m_state->makeRoom(pixels.size);
    const auto& planes = m_state->planes;
    auto& scaler = m_state->scaler;
    // The scaler's own colours are off by up to 3 levels, unless it takes three times as long.
    scaler.reset(sws_getCachedContext(scaler.release(), part.width, part.height, AV_PIX_FMT_YUV420P, pixels.size.width,
        pixels.size.height, AV_PIX_FMT_YUV444P, SWS_BILINEAR, nullptr, nullptr, nullptr));
    if (!scaler)
        throw std::bad_alloc();
    const int left = (picture.width() - part.width) / 4 * 2;
    const int top = (picture.height() - part.height) / 4 * 2;
    std::array<const std::uint8_t*, 3> from{};
    std::array<std::uint8_t*, 3> to{};
    std::array<int, 3> fromStrides{}, toStrides{};
    for (const int index : { PlaneY, PlaneCb, PlaneCr }) {
        const int shift = index == PlaneY ? 0 : 1;
        const Plane plane = picture.plane(index);
        from[index] = plane.row(top >> shift) + (left >> shift);
        fromStrides[index] = static_cast<int>(plane.stride);
        to[index] = planes[index].data;
        toStrides[index] = static_cast<int>(planes[index].stride);
    }
    libav::check(sws_scale(scaler.get(), from.data(), fromStrides.data(), 0, part.height, to.data(), toStrides.data()), failure);
    convertToRgb({ planes[PlaneY], planes[PlaneCb], planes[PlaneCr] }, pixels);
}

} // namespace vantry
