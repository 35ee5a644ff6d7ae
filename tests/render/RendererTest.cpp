#include "render/Renderer.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

constexpr Size fullHd{ 1920, 1080 };

Project withLayouts(std::vector<LayoutEvent> layouts)
{
    Project project;
    project.bubbleSize = 0.26;
    project.layouts = std::move(layouts);
    return project;
}

void expectRect(const Rect& actual, const Rect& expected)
{
    EXPECT_NEAR(actual.x, expected.x, 0.01);
    EXPECT_NEAR(actual.y, expected.y, 0.01);
    EXPECT_NEAR(actual.width, expected.width, 0.01);
    EXPECT_NEAR(actual.height, expected.height, 0.01);
}

constexpr auto bottomRight = Corner::bottomRight;

} // namespace

TEST(CameraPlacement, restsWhereItsLayoutSays)
{
    // From the beginning: the first event has no transition.
    const auto at = [](Layout layout, Corner corner, Size size = fullHd) {
        return Renderer::cameraPlacement(0.1, withLayouts({ { 0, layout, corner } }), size);
    };
    const auto camera = at(Layout::camera, bottomRight);
    expectRect(camera.rect, { 0, 0, 1920, 1080 });
    EXPECT_EQ(camera.radius, 0);
    const auto bubble = at(Layout::bubble, bottomRight);
    expectRect(bubble.rect, { 1596.0, 43.2, 280.8, 280.8 });
    EXPECT_NEAR(bubble.radius, 140.4, 0.01);
    expectRect(at(Layout::bubble, Corner::topLeft).rect, { 43.2, 756.0, 280.8, 280.8 });
    expectRect(at(Layout::bubble, bottomRight, { 1280, 720 }).rect, { 1064, 28.8, 187.2, 187.2 });
    EXPECT_EQ(at(Layout::screen, bottomRight).opacity, 0);
}

TEST(CameraPlacement, changesAlongASmoothCurve)
{
    const auto project =
        withLayouts({ { 0, Layout::camera, bottomRight }, { 5, Layout::bubble, bottomRight }, { 8, Layout::screen, bottomRight } });
    const auto at = [&](double time) { return Renderer::cameraPlacement(time, project, fullHd); };
    expectRect(at(4.99995).rect, { 0, 0, 1920, 1080 }); // In force a hair early, but then at its very start.
    expectRect(at(5.2).rect, { 798.0, 21.6, 1100.4, 680.4 });
    EXPECT_NEAR(at(5.2).radius, 70.2, 0.01);
    expectRect(at(5.4).rect, { 1596.0, 43.2, 280.8, 280.8 });
    expectRect(at(8.1).rect, { 1596.0, 43.2, 280.8, 280.8 });
    EXPECT_NEAR(at(8.1).opacity, 1 - 0.25 * 0.25 * 2.5, 1e-9);
    EXPECT_EQ(at(8.4).opacity, 0);
}

TEST(OverlayPlacement, popsSlidesAndFadesByItsKind)
{
    Overlay overlay{ .start = 10, .duration = 4, .kind = OverlayKind::bubble, .x = 0.5, .y = 0.25, .width = 0.42 };
    const Size image{ 1613, 400 };
    const auto at = [&](double time) { return Renderer::overlayPlacement(time, overlay, image, fullHd); };
    EXPECT_FALSE(at(9.99));
    EXPECT_FALSE(at(14));
    EXPECT_EQ(at(10)->opacity, 0);
    EXPECT_NEAR(at(10)->rect.width, 0.8 * 0.42 * 1920, 0.01);
    EXPECT_NEAR(at(10.25)->rect.width, 0.42 * 1920, 0.01);
    EXPECT_NEAR(at(12)->rect.midX(), 960, 0.01);
    EXPECT_NEAR(at(12)->rect.midY(), 810, 0.01);
    EXPECT_NEAR(at(13.85)->opacity, 0.5, 1e-9);
    EXPECT_GT(at(10.145)->rect.width, 1.015 * 0.42 * 1920);

    overlay.kind = OverlayKind::lowerThird;
    EXPECT_NEAR(at(12)->rect.midY() - at(10)->rect.midY(), 32.4, 0.01);
    EXPECT_NEAR(at(10)->rect.width, 0.42 * 1920, 0.01);
}

} // namespace vantry
