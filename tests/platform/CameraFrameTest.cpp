#include "platform/CameraFrame.h"

#include <gmock/gmock.h>

#include <utility>
#include <vector>

namespace vantry {

using testing::ElementsAre;
using testing::Pair;

namespace {

struct Part {
    std::size_t offset = 0;
    std::size_t size = 0;
    std::ptrdiff_t stride = 0;
};

/// Where each plane was found in the memory, and its stride. Nothing when there is no frame.
std::vector<std::pair<std::ptrdiff_t, std::ptrdiff_t>> planes(
    CameraFormat format, int width, int height, const std::vector<Part>& parts)
{
    const std::vector<std::uint8_t> memory(1000);
    std::vector<CameraMemory> given;
    for (const auto& part : parts)
        given.push_back({ std::span(memory).subspan(part.offset, part.size), part.stride });
    std::vector<std::pair<std::ptrdiff_t, std::ptrdiff_t>> found;
    if (const auto frame = findPlanes({ .format = format, .width = width, .height = height }, given, HostTime()))
        for (const auto& plane : frame->planes)
            if (!plane.bytes.empty())
                found.emplace_back(plane.bytes.data() - memory.data(), plane.stride);
    return found;
}

} // namespace

TEST(CameraFrame, planesFollowEachOtherOrHaveMemoryOfTheirOwn)
{
    EXPECT_THAT(planes(CameraFormat::I420, 6, 4, { { 0, 36 } }), ElementsAre(Pair(0, 6), Pair(24, 3), Pair(30, 3)));
    EXPECT_THAT(planes(CameraFormat::Nv12, 6, 4, { { 0, 48, 8 } }), ElementsAre(Pair(0, 8), Pair(32, 8)));
    EXPECT_THAT(planes(CameraFormat::I420, 6, 4, { { 10, 24, 6 }, { 50, 6 }, { 70, 6, 3 } }),
        ElementsAre(Pair(10, 6), Pair(50, 3), Pair(70, 3)));
}

TEST(CameraFrame, aFrameThatIsTooSmallOrMakesNoSenseIsNone)
{
    const auto fits = [](CameraFormat format, int width, int height, std::size_t size, std::ptrdiff_t stride = 0) {
        return !planes(format, width, height, { { 0, size, stride } }).empty();
    };
    // The padding of the last row may be left out, nothing else. Odd sizes have one chroma sample more than half of their pixels.
    EXPECT_TRUE(fits(CameraFormat::Yuy2, 4, 3, 2 * 20 + 8, 20));
    EXPECT_FALSE(fits(CameraFormat::Yuy2, 4, 3, 2 * 20 + 7, 20));
    EXPECT_TRUE(fits(CameraFormat::I420, 5, 3, 15 + 6 + 6));
    EXPECT_FALSE(fits(CameraFormat::I420, 5, 3, 15 + 6 + 5));
    EXPECT_FALSE(fits(CameraFormat::Nv12, 4, 4, 23));
    EXPECT_FALSE(fits(CameraFormat::Mjpg, 4, 4, 0));

    EXPECT_FALSE(fits(CameraFormat::Yuy2, 4, 3, 1000, 7));
    EXPECT_FALSE(fits(CameraFormat::Yuy2, 4, 3, 1000, -8));
    EXPECT_FALSE(fits(CameraFormat::Bgrx, 0, 3, 1000));
    EXPECT_FALSE(fits(CameraFormat::Bgrx, 1 << 20, 1 << 20, 1000));
}

} // namespace vantry
