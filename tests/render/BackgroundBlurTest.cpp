#include "render/BackgroundBlur.h"

#include "TestProject.h"
#include "base/AppError.h"
#include "render/Compositor.h"
#include "render/FrameMaker.h"
#include "render/PlayerItem.h"
#include "support/Photograph.h"

#include <QLoggingCategory>

#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace vantry {

namespace {

using test::noisy;
using test::photograph;
/// Two edges, one upright and one level, both near the border, with so much blur: their Gaussian is known without taking it.
double edges(const Plane& plane, int x, int y, double sigma)
{
    const auto step = [&](double distance) { return std::erfc(-distance / (sigma * std::numbers::sqrt2)) / 2; };
    return 20 + 100 * step(x + 0.5 - plane.width * 9 / 10) + 100 * step(y + 0.5 - plane.height / 5);
}

double worstError(int width, int height, PlaneBlur::Detail detail, double sigma)
{
    PictureBuffer before(width, height), after(width, height);
    const auto sharp = before.plane(PlaneY), blurred = after.plane(PlaneY);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            sharp.row(y)[x] = static_cast<std::uint8_t>(edges(sharp, x, y, 1e-9));
    const SoftMask nobody{ 256, 144, std::vector<Weight>(std::size_t(256) * 144) };
    PlaneBlur({ width, height }, detail, sigma, { 256, 144 }).apply(sharp, nobody, blurred);
    double worst = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            worst = std::max(worst, std::abs(blurred.row(y)[x] - edges(sharp, x, y, sigma)));
    return worst;
}

/// The mean difference of neighbours, which blurring takes away.
double detail(const Picture& picture, int left, int top, int width, int height)
{
    double sum = 0;
    for (int y = top; y < top + height; ++y)
        for (int x = left; x < left + width; ++x)
            sum += std::abs(picture.plane(PlaneY).row(y)[x + 1] - picture.plane(PlaneY).row(y)[x]);
    return sum / (width * height);
}

} // namespace

TEST(PlaneBlur, isTheGaussianWithEdgesThatGoOn)
{
    EXPECT_LT(worstError(1920, 1080, PlaneBlur::Detail::Luma, 27), 1.5);
    EXPECT_LT(worstError(960, 540, PlaneBlur::Detail::Chroma, 13.5), 1.5);
    EXPECT_LT(worstError(642, 358, PlaneBlur::Detail::Luma, 0.025 * 358), 1.5);
    EXPECT_LT(worstError(322, 178, PlaneBlur::Detail::Chroma, 0.025 * 178), 1.5);
}

TEST(BackgroundBlur, keepsThePersonAndBlursWhatIsBehind)
{
    BackgroundBlur blur;
    const Picture sharp = photograph(1280, 720);
    const Picture blurred = blur.apply(sharp);
    EXPECT_EQ(detail(blurred, 560, 260, 160, 160), detail(sharp, 560, 260, 160, 160)) << "the face";
    EXPECT_LT(detail(blurred, 60, 40, 160, 300), detail(sharp, 60, 40, 160, 300) / 4) << "the flag";
    EXPECT_EQ(blur.apply(sharp), blurred) << "made once";
}

TEST(BackgroundBlur, isDoneWhereTheProjectAsksForIt)
{
    const Picture camera = photograph(640, 360);
    const auto flag = [&](std::optional<bool> isBlurred) {
        auto instruction = std::make_shared<RenderInstruction>();
        instruction->project.layouts = { { 0, Layout::camera, Corner::bottomRight }, { 1, Layout::screen, Corner::bottomRight } };
        instruction->project.blurBackground = isBlurred;
        Compositor compositor(instruction, 640, 360);
        compositor.compose(std::chrono::seconds(2), {}, camera); // unseen
        return detail(compositor.compose(MediaTime(0), {}, camera), 30, 20, 80, 150);
    };
    EXPECT_EQ(flag(std::nullopt), detail(camera, 30, 20, 80, 150));
    EXPECT_EQ(flag(false), detail(camera, 30, 20, 80, 150));
    EXPECT_LT(flag(true), detail(camera, 30, 20, 80, 150) / 4);
}

TEST(BackgroundBlur, oneNetworkServesAllRebuildsOfAPlayer)
{
    static int built = 0;
    built = 0;
    QLoggingCategory::setFilterRules(QStringLiteral("vantry.render.debug=true"));
    const auto before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& text) { built += text.contains(u"network"); });
    {
        test::TestProject content;
        content.add({ .frames = 30, .camera = test::count }, 1);
        content.project.layouts = { { 0, Layout::camera, Corner::bottomRight } };
        FrameMaker maker("test");
        for (const bool isBlurred : { false, true, true, false, true }) {
            content.project.blurBackground = isBlurred;
            const auto item = makePlayerItem(content.project, content.folder.path(), {});
            maker.setComposition(item->plan, item->instruction);
            maker.ask(3);
            EXPECT_TRUE(maker.take());
        }
    }
    qInstallMessageHandler(before);
    QLoggingCategory::setFilterRules({});
    EXPECT_EQ(built, 1);
}

/// As much noise as a camera's recording keeps.
TEST(PersonFinder, aStillPersonDoesNotShimmer)
{
    PersonFinder finder(BackgroundBlur::ownNetwork());
    const Picture still = photograph(1280, 720);
    const Plane luma = still.plane(PlaneY);
    PlaneBlur blur({ luma.width, luma.height }, PlaneBlur::Detail::Luma, 18, { finder.width(), finder.height() });
    PictureBuffer frames[]{ { luma.width, luma.height }, { luma.width, luma.height } };
    blur.apply(luma, finder.find(noisy(still, 1, 0)), frames[0].plane(PlaneY));
    for (unsigned number = 1; number < 6; ++number) {
        const MutablePlane now = frames[number % 2].plane(PlaneY);
        const MutablePlane before = frames[(number + 1) % 2].plane(PlaneY);
        blur.apply(luma, finder.find(noisy(still, 1, number)), now);
        int seen = 0;
        for (int y = 0; y < luma.height; ++y)
            for (int x = 0; x < luma.width; ++x)
                seen += std::abs(now.row(y)[x] - before.row(y)[x]) > 6;
        EXPECT_LT(seen, luma.width * luma.height / 1000);
    }
}

TEST(PersonNetwork, refusesABrokenFile)
{
    const auto own = BackgroundBlur::ownNetwork();
    EXPECT_NO_THROW(PersonNetwork{ own });
    for (const std::size_t length : { std::size_t(0), std::size_t(7), own.size() / 2, own.size() - 1 })
        EXPECT_THROW(PersonNetwork{ own.first(length) }, AppError) << length;
    const Picture picture = photograph(320, 180);
    EXPECT_EQ(BackgroundBlur(own.first(100)).apply(picture), picture) << "without a network everything stays sharp";
}

} // namespace vantry
