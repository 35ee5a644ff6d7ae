#include "render/BackgroundBlur.h"

#include "base/AppError.h"
#include "render/Compositor.h"
#include "support/Photograph.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace vantry {

namespace {

using test::noisy;
using test::photograph;
using Samples = std::vector<double>;

/// One direction of the Gaussian, with the edges going on for ever.
Samples blurredLine(const Samples& line, const Samples& kernel)
{
    const int last = static_cast<int>(line.size()) - 1;
    const int reach = static_cast<int>(kernel.size()) - 1;
    Samples result;
    for (int i = 0; i <= last; ++i) {
        double sum = 0;
        for (int k = -reach; k <= reach; ++k)
            sum += kernel[static_cast<std::size_t>(std::abs(k))] * line[static_cast<std::size_t>(std::clamp(i + k, 0, last))];
        result.push_back(sum);
    }
    return result;
}

std::vector<Samples> turned(const std::vector<Samples>& rows)
{
    std::vector<Samples> columns(rows[0].size(), Samples(rows.size()));
    for (std::size_t y = 0; y < rows.size(); ++y)
        for (std::size_t x = 0; x < rows[y].size(); ++x)
            columns[x][y] = rows[y][x];
    return columns;
}

std::vector<Samples> exactlyBlurred(const Plane& plane, double sigma)
{
    Samples kernel;
    for (int i = 0; i <= static_cast<int>(4 * sigma); ++i)
        kernel.push_back(std::exp(-0.5 * i * i / (sigma * sigma)));
    const double sum = 2 * std::accumulate(kernel.begin(), kernel.end(), 0.0) - kernel[0];
    for (double& weight : kernel)
        weight /= sum;
    std::vector<Samples> rows;
    for (int y = 0; y < plane.height; ++y)
        rows.push_back(blurredLine(Samples(plane.row(y), plane.row(y) + plane.width), kernel));
    auto columns = turned(rows);
    for (Samples& column : columns)
        column = blurredLine(column, kernel);
    return turned(columns);
}

SoftMask uniformMask(Weight weight)
{
    return { 256, 144, std::vector<Weight>(std::size_t(256) * 144, weight) };
}

double worstError(const Plane& plane, PlaneBlur::Detail detail, double sigma)
{
    PictureBuffer result(2 * plane.width, 2 * plane.height);
    PlaneBlur({ plane.width, plane.height }, detail, sigma, { 256, 144 }).apply(plane, uniformMask(0), result.plane(PlaneY));
    const auto exact = exactlyBlurred(plane, sigma);
    double worst = 0;
    for (int y = 0; y < plane.height; ++y)
        for (int x = 0; x < plane.width; ++x)
            worst = std::max(
                worst, std::abs(result.plane(PlaneY).row(y)[x] - exact[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]));
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
    const Picture large = photograph(1920, 1080);
    EXPECT_LT(worstError(large.plane(PlaneY), PlaneBlur::Detail::Luma, 27), 1.5);
    EXPECT_LT(worstError(large.plane(PlaneCr), PlaneBlur::Detail::Chroma, 13.5), 1.5);
    EXPECT_LT(worstError(photograph(1280, 720).plane(PlaneY), PlaneBlur::Detail::Luma, 18), 1.5);
    const Picture odd = photograph(642, 358);
    EXPECT_LT(worstError(odd.plane(PlaneY), PlaneBlur::Detail::Luma, 0.025 * 358), 1.5);
    EXPECT_LT(worstError(odd.plane(PlaneCb), PlaneBlur::Detail::Chroma, 0.025 * 179), 1.5);
}

TEST(PlaneBlur, leavesWhatTheMaskCovers)
{
    const Picture picture = photograph(640, 360);
    const Plane sharp = picture.plane(PlaneY);
    PictureBuffer result(640, 360);
    PlaneBlur({ 640, 360 }, PlaneBlur::Detail::Luma, 9, { 256, 144 }).apply(sharp, uniformMask(toWeight(1)), result.plane(PlaneY));
    for (int y = 0; y < 360; ++y)
        ASSERT_TRUE(std::equal(sharp.row(y), sharp.row(y) + 640, result.plane(PlaneY).row(y))) << y;
}

TEST(BackgroundBlur, keepsThePersonAndBlursWhatIsBehind)
{
    BackgroundBlur blur;
    const Picture sharp = photograph(1280, 720);
    const Picture blurred = blur.apply(sharp);
    ASSERT_EQ(blurred.width(), 1280);
    ASSERT_EQ(blurred.height(), 720);
    EXPECT_EQ(detail(blurred, 560, 260, 160, 160), detail(sharp, 560, 260, 160, 160)) << "the face";
    EXPECT_LT(detail(blurred, 60, 40, 160, 300), detail(sharp, 60, 40, 160, 300) / 4) << "the flag";
    EXPECT_EQ(blur.apply(sharp), blurred) << "made once";

    PictureBuffer grey(640, 360);
    grey.fill(120, 128, 128);
    const Picture empty = blur.apply(std::move(grey).share());
    EXPECT_EQ(detail(empty, 0, 0, 600, 360), 0);
    EXPECT_EQ(empty.plane(PlaneY).row(0)[0], 120) << "the edges are as bright as the middle";
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
    std::mt19937 random(1);
    for (int i = 0; i < 200; ++i) {
        std::vector<std::byte> file(own.begin(), own.end());
        for (int k = 0; k < 3; ++k)
            file[random() % 20'000] ^= static_cast<std::byte>(1U << random() % 8);
        try {
            PersonNetwork network(file);
            network.run();
        } catch (const AppError&) {
        }
    }
    const Picture picture = photograph(320, 180);
    EXPECT_EQ(BackgroundBlur(own.first(100)).apply(picture), picture) << "without a network everything stays sharp";
}

} // namespace vantry
