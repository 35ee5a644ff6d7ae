#include "capture/CameraPictures.h"

#include "support/Collected.h"

#include <gtest/gtest.h>

#include <future>

namespace vantry {

namespace {

struct SmallFrame {
    explicit SmallFrame(CameraMode mode, int size)
        : bytes(static_cast<std::size_t>(size), 100)
        , frame(*findPlanes(mode, std::vector{ CameraMemory{ bytes, 0 } }, HostTime(std::chrono::seconds(7))))
    {
    }

    std::vector<std::uint8_t> bytes;
    CameraFrame frame;
};

} // namespace

TEST(CameraPictures, framesThatComeTooLateAreDiscardedAndNobodyWaits)
{
    SmallFrame small({ .format = CameraFormat::Yuy2, .width = 4, .height = 4 }, 32);
    std::promise<void> mayGoOn;
    test::Collected<PictureSample> pictures;
    {
        CameraPictures converter([&, wait = mayGoOn.get_future().share()](const PictureSample& sample) {
            wait.wait();
            pictures.add(sample);
        });
        for (int i = 0; i < 10; ++i)
            converter.take(small.frame);
        // The frames' memory belongs to the camera again.
        std::ranges::fill(small.bytes, 0);
        mayGoOn.set_value();
    }
    ASSERT_EQ(pictures.count(), 2u);
    for (const auto& sample : pictures.all())
        EXPECT_EQ(sample.picture.plane(PlaneY).row(3)[3], 100);
}

TEST(CameraPictures, oddSizesLoseTheLastRowAndColumnAndWhatIsDamagedIsLeftOut)
{
    const SmallFrame odd({ .format = CameraFormat::I420, .width = 5, .height = 3 }, 15 + 6 + 6);
    const SmallFrame thin({ .format = CameraFormat::Yuy2, .width = 1, .height = 3 }, 12);
    const SmallFrame noImage({ .format = CameraFormat::Mjpg, .width = 4, .height = 4 }, 40);
    test::Collected<PictureSample> pictures;
    for (const auto* frame : { &thin, &noImage, &odd }) {
        CameraPictures converter([&](const PictureSample& sample) { pictures.add(sample); });
        converter.take(frame->frame);
    }
    ASSERT_EQ(pictures.count(), 1u);
    const auto sample = pictures.all()[0];
    EXPECT_EQ(sample.picture.width(), 4);
    EXPECT_EQ(sample.picture.height(), 2);
    EXPECT_EQ(sample.time, HostTime(std::chrono::seconds(7)));
}

} // namespace vantry
