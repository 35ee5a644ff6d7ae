#include "platform/CameraFrame.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantry {

namespace {

/// As much memory as a test says; where a plane was found is told by its distance from the beginning.
struct Memory {
    explicit Memory(std::size_t size)
        : bytes(size)
    {
    }
    CameraMemory part(std::size_t offset, std::size_t size, std::ptrdiff_t stride = 0) const
    {
        return { std::span(bytes).subspan(offset, size), stride };
    }
    CameraMemory all(std::ptrdiff_t stride = 0) const { return part(0, bytes.size(), stride); }
    std::ptrdiff_t offsetOf(const CameraMemory& plane) const { return plane.bytes.data() - bytes.data(); }

    std::vector<std::uint8_t> bytes;
};

bool fits(CameraFormat format, int width, int height, std::size_t size, std::ptrdiff_t stride = 0)
{
    const Memory memory(size);
    const std::vector parts{ memory.all(stride) };
    return findPlanes({ .format = format, .width = width, .height = height }, parts, HostTime()).has_value();
}

} // namespace

TEST(CameraFrame, planesFollowEachOtherInOneMemory)
{
    const Memory memory(6 * 4 + 2 * 3 * 2);
    const auto tight =
        findPlanes({ .format = CameraFormat::I420, .width = 6, .height = 4 }, std::vector{ memory.all() }, HostTime());
    ASSERT_TRUE(tight);
    EXPECT_EQ(memory.offsetOf(tight->planes[1]), 24);
    EXPECT_EQ(memory.offsetOf(tight->planes[2]), 30);
    EXPECT_EQ(tight->planes[2].stride, 3);

    const Memory padded(8 * 4 + 8 * 2);
    const auto nv12 =
        findPlanes({ .format = CameraFormat::Nv12, .width = 6, .height = 4 }, std::vector{ padded.all(8) }, HostTime());
    ASSERT_TRUE(nv12);
    EXPECT_EQ(padded.offsetOf(nv12->planes[1]), 32);
    EXPECT_EQ(nv12->planes[1].stride, 8);
}

TEST(CameraFrame, planesHaveMemoryOfTheirOwn)
{
    const Memory memory(100);
    const std::vector parts{ memory.part(10, 24, 6), memory.part(50, 6), memory.part(70, 6, 3) };
    const auto frame = findPlanes({ .format = CameraFormat::I420, .width = 6, .height = 4 }, parts, HostTime());
    ASSERT_TRUE(frame);
    EXPECT_EQ(memory.offsetOf(frame->planes[1]), 50);
    EXPECT_EQ(frame->planes[1].stride, 3);
    EXPECT_EQ(memory.offsetOf(frame->planes[2]), 70);
}

TEST(CameraFrame, aFrameThatIsTooSmallIsNone)
{
    // The padding of the last row may be left out, nothing else.
    EXPECT_TRUE(fits(CameraFormat::Yuy2, 4, 3, 2 * 20 + 8, 20));
    EXPECT_FALSE(fits(CameraFormat::Yuy2, 4, 3, 2 * 20 + 7, 20));
    EXPECT_TRUE(fits(CameraFormat::Bgrx, 4, 3, 48));
    EXPECT_FALSE(fits(CameraFormat::Bgrx, 4, 3, 47));
    EXPECT_FALSE(fits(CameraFormat::Nv12, 4, 4, 23));
    EXPECT_FALSE(fits(CameraFormat::Mjpg, 4, 4, 0));
    // Odd sizes have one chroma sample more than half of their pixels.
    EXPECT_TRUE(fits(CameraFormat::I420, 5, 3, 15 + 6 + 6));
    EXPECT_FALSE(fits(CameraFormat::I420, 5, 3, 15 + 6 + 5));
    // What makes no sense.
    EXPECT_FALSE(fits(CameraFormat::Yuy2, 4, 3, 1000, 7));
    EXPECT_FALSE(fits(CameraFormat::Yuy2, 4, 3, 1000, -8));
    EXPECT_FALSE(fits(CameraFormat::Bgrx, 0, 3, 1000));
    EXPECT_FALSE(fits(CameraFormat::Bgrx, 1 << 20, 1 << 20, 1000));
}

} // namespace vantry
