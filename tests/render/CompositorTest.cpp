#include "ReferenceFrame.h"
#include "TestProject.h"

#include "media/PictureSize.h"
#include "render/Compositor.h"
#include "render/Renderer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <random>

namespace vantry {

namespace {

using Colour = ReferenceFrame::Colour;

std::array<double, 3> toYCbCr(const Colour& rgb)
{
    const double y = 0.2126 * rgb[0] + 0.7152 * rgb[1] + 0.0722 * rgb[2];
    return { 16 + 219 * y, 128 + 224 * (rgb[2] - y) / 1.8556, 128 + 224 * (rgb[0] - y) / 1.5748 };
}

/// Slow waves: every filter gives the same, but a shift by a pixel does not.
ReferenceFrame::Source waves(double phase)
{
    return [phase](double x, double y) -> Colour {
        return { 0.5 + 0.2 * std::sin(x / 8 + phase), 0.5 + 0.2 * std::sin(x / 5 + phase) + 0.2 * std::sin(y / 5 - phase),
            0.5 + 0.2 * std::sin((x + y) / 9) };
    };
}

std::uint8_t byte(double value)
{
    return static_cast<std::uint8_t>(std::clamp(std::lround(value), 0l, 255l));
}

Picture render(int width, int height, const ReferenceFrame::Source& source)
{
    PictureBuffer buffer(width, height);
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto plane = buffer.plane(index);
        const double step = index == PlaneY ? 1 : 2;
        for (int y = 0; y < plane.height; ++y)
            for (int x = 0; x < plane.width; ++x)
                plane.row(y)[x] = byte(toYCbCr(source((x + 0.5) * step, (y + 0.5) * step))[static_cast<std::size_t>(index)]);
    }
    return std::move(buffer).share();
}

/// A card with soft edges on transparent ground.
std::array<double, 4> card(double x, double y)
{
    const double alpha = std::clamp(std::min({ x, y, 600 - x, 200 - y }) / 20, 0.0, 0.9);
    return { alpha * (0.5 + 0.4 * std::sin(x / 8)), alpha * (0.5 + 0.4 * std::sin(y / 8)), alpha * 0.3, alpha };
}

Bitmap cardBitmap()
{
    std::vector<std::uint8_t> bytes;
    for (int y = 0; y < 200; ++y)
        for (int x = 0; x < 600; ++x) {
            const auto c = card(x + 0.5, y + 0.5);
            for (const double value : { c[2], c[1], c[0], c[3] })
                bytes.push_back(byte(value * 255));
        }
    return Bitmap(600, 200, std::move(bytes));
}

std::shared_ptr<const RenderInstruction> instruct(const Project& project)
{
    auto instruction = std::make_shared<RenderInstruction>();
    instruction->project = project;
    for (const auto& overlay : project.overlays)
        instruction->images.emplace(overlay.id, cardBitmap());
    return instruction;
}

MediaTime at(double time)
{
    return std::chrono::round<MediaTime>(std::chrono::duration<double>(time));
}

/// Looks at about two thousand pixels of the area. Were the picture one pixel beside its place, the luma would be more than 1.4
/// off.
void expectAlike(const Picture& picture, const ReferenceFrame& reference, const Rect& rect)
{
    const Rect fromTop{ rect.x, picture.height() - rect.bottom(), rect.width, rect.height };
    const auto area = evenBounds(fromTop, 0.005 * picture.height(), { 0, 0, picture.width(), picture.height() });
    const int step = std::max(2, static_cast<int>(std::sqrt(area.width() * area.height() / 2000.0))) | 1;
    double luma = 0, chroma = 0;
    int lumaCount = 0, chromaCount = 0;
    for (int y = area.top; y < area.bottom; y += step)
        for (int x = area.left; x < area.right; x += step) {
            luma += std::abs(picture.plane(PlaneY).row(y)[x] - toYCbCr(reference.at(x, y))[PlaneY]);
            if (lumaCount++ % 4)
                continue;
            for (std::size_t index : { PlaneCb, PlaneCr }) {
                double mean = 0;
                for (int corner = 0; corner < 4; ++corner)
                    mean += toYCbCr(reference.at(x / 2 * 2 + corner % 2, y / 2 * 2 + corner / 2))[index] / 4;
                chroma += std::abs(picture.plane(static_cast<int>(index)).row(y / 2)[x / 2] - mean);
                ++chromaCount;
            }
        }
    EXPECT_LT(luma / lumaCount, 1.2);
    EXPECT_LT(chroma / chromaCount, 0.8);
}

/// Composes the project at a time, in two sizes, and holds the frames against the reference: whole, the camera, and every overlay
/// by itself.
void expectGolden(const Project& project, double time, PictureSize screen = { 1600, 1000 })
{
    for (const Size size : { Size{ 1280, 720 }, Size{ 1920, 1080 } }) {
        SCOPED_TRACE(size.height);
        const ReferenceFrame reference{
            .project = project,
            .time = time,
            .size = size,
            .screenSize = { static_cast<double>(screen.width), static_cast<double>(screen.height) },
            .screen = waves(0),
            .cameraSize = { 1280, 720 },
            .camera = waves(2),
            .overlaySize = { 600, 200 },
            .overlay = card,
        };
        Compositor compositor(instruct(project), static_cast<int>(size.width), static_cast<int>(size.height));
        const auto frame = compositor.compose(
            at(time), render(screen.width, screen.height, reference.screen), render(1280, 720, reference.camera));
        expectAlike(frame, reference, { 0, 0, size.width, size.height });
        const auto camera = Renderer::cameraPlacement(time, project, size);
        if (camera.opacity > 0.01)
            expectAlike(frame, reference, camera.rect);
        for (const auto& overlay : project.overlays)
            expectAlike(frame, reference, Renderer::overlayPlacement(time, overlay, reference.overlaySize, size)->rect);
    }
}

Project layouts(std::vector<LayoutEvent> events)
{
    Project project;
    project.layouts = std::move(events);
    return project;
}

constexpr auto bottomRight = Corner::bottomRight;
constexpr auto topLeft = Corner::topLeft;

} // namespace

TEST(GoldenFrame, layouts)
{
    for (const auto layout : { Layout::camera, Layout::bubble, Layout::screen }) {
        SCOPED_TRACE(static_cast<int>(layout));
        expectGolden(layouts({ { 0, layout, bottomRight } }), 1);
    }
    expectGolden(layouts({ { 0, Layout::bubble, topLeft } }), 1, { 1920, 1080 });
}

TEST(GoldenFrame, transitions)
{
    const LayoutEvent camera{ 0, Layout::camera, bottomRight };
    const LayoutEvent bubble{ 0, Layout::bubble, bottomRight };
    const LayoutEvent screen{ 0, Layout::screen, bottomRight };
    const LayoutEvent corner{ 0, Layout::bubble, topLeft };
    for (auto [from, to] : { std::pair(camera, bubble), { bubble, screen }, { screen, camera }, { bubble, corner } }) {
        SCOPED_TRACE(std::to_string(static_cast<int>(from.layout)) + " to " + std::to_string(static_cast<int>(to.layout)));
        to.time = 3;
        expectGolden(layouts({ from, to }), 3.2);
    }
}

TEST(GoldenFrame, crop)
{
    auto project = layouts({ { 0, Layout::bubble, bottomRight } });
    for (const CropRect& crop :
        { CropRect{ 0.1, 0.06, 0.55, 0.9 }, CropRect{ 0.1, 0.06, 0.8, 0.72 } }) { // the second pixel by pixel
        project.screenCrop = crop;
        expectGolden(project, 1);
    }
}

TEST(GoldenFrame, overlaysEnterStayAndLeave)
{
    for (const auto kind : { OverlayKind::bubble, OverlayKind::text, OverlayKind::lowerThird }) {
        SCOPED_TRACE(static_cast<int>(kind));
        auto project = layouts({ { 0, Layout::screen, bottomRight } });
        project.overlays.push_back({ .start = 2, .duration = 4, .kind = kind, .x = 0.4, .y = 0.3, .width = 0.42 });
        project.overlays.push_back({ .start = 1, .duration = 9, .kind = kind, .x = 0.5, .y = 0.35, .width = 0.3 });
        for (const double time : { 2.1, 4.0, 5.9 })
            expectGolden(project, time);
    }
}

TEST(Compositor, aFrameDoesNotDependOnTheFramesBeforeIt)
{
    // Everything at once, in a random order of times, with sources that change and stand still, against a compositor that starts
    // anew.
    auto project = layouts({ { 0, Layout::camera, bottomRight }, { 2, Layout::bubble, bottomRight }, { 3, Layout::bubble, topLeft },
        { 5, Layout::screen, topLeft }, { 7, Layout::bubble, Corner::topRight }, { 8, Layout::camera, bottomRight } });
    project.overlays.push_back({ .start = 1, .duration = 4, .kind = OverlayKind::bubble, .x = 0.3, .y = 0.3, .width = 0.5 });
    project.overlays.push_back({ .start = 2.5, .duration = 4, .kind = OverlayKind::lowerThird, .x = 0.9, .y = 0.9, .width = 0.4 });
    for (const bool cropped : { false, true }) {
        if (cropped)
            project.screenCrop = CropRect{ 0.05, 0.1, 0.8, 0.7 };
        const auto instruction = instruct(project);
        std::vector<Picture> screens, cameras;
        for (int i = 0; i < 3; ++i) {
            // Screens that differ in one corner only.
            screens.push_back(render(640, 360, [&](double x, double y) { return waves(x > 400 && y > 200 ? i : 0)(x, y); }));
            cameras.push_back(render(320, 240, waves(i)));
        }
        screens.emplace_back(); // None.
        cameras.emplace_back();
        std::mt19937 random(3);
        Compositor compositor(instruction, 640, 360);
        std::deque<Picture> kept;
        for (int i = 0; i < 150; ++i) {
            const auto time = at(i % 3 ? i / 15.0 : random() % 100 / 10.0);
            const auto& screen = screens[random() % 4];
            const auto& camera = cameras[random() % 4];
            const auto frame = compositor.compose(time, screen, camera);
            const auto anew = Compositor(instruction, 640, 360).compose(time, screen, camera);
            ASSERT_TRUE(test::areSame(frame, anew)) << "frame " << i;
            kept.push_back(frame); // As an encoder's queue does.
            if (kept.size() > random() % 5)
                kept.pop_front();
        }
    }
}

TEST(Compositor, aStillFrameIsTheSamePicture)
{
    Compositor compositor(instruct(layouts({ { 0, Layout::bubble, bottomRight } })), 640, 360);
    const auto screen = render(640, 360, waves(0));
    const auto camera = render(320, 240, waves(1));
    const auto first = compositor.compose(at(1), screen, camera);
    EXPECT_EQ(compositor.compose(at(1.1), screen, camera), first);
}

TEST(Compositor, drawsWhatThereIs)
{
    // No source at all, a crop without area, a bubble without a sensible size, an overlay without an image: nothing of it may
    // crash.
    auto project = layouts({ { 0, Layout::bubble, bottomRight } });
    project.overlays.push_back({ .start = 0, .duration = 9 });
    for (const double size : { 0.0, -3.0, 1e12, std::nan("") }) {
        project.bubbleSize = size;
        project.screenCrop = CropRect{ 0.5, 0.5, size, size };
        auto instruction = std::make_shared<RenderInstruction>();
        instruction->project = project;
        Compositor compositor(instruction, 640, 360);
        const auto empty = compositor.compose(at(0), Picture(), Picture());
        EXPECT_EQ(empty.plane(PlaneY).row(100)[100], 29);
        compositor.compose(at(1), render(320, 180, waves(0)), render(320, 240, waves(0)));
    }
}

} // namespace vantry
