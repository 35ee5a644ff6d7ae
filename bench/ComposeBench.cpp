#include "Figure.h"
#include "ProcessorTime.h"

#include "render/Compositor.h"

#include <random>
#include <vector>

namespace vantry::bench {

namespace {

Picture noise(int width, int height, unsigned seed)
{
    std::mt19937 random(seed);
    PictureBuffer buffer(width, height);
    for (int index : { PlaneY, PlaneCb, PlaneCr }) {
        const auto plane = buffer.plane(index);
        for (int y = 0; y < plane.height; ++y)
            for (int x = 0; x < plane.width; ++x)
                plane.row(y)[x] = static_cast<std::uint8_t>(random());
    }
    return std::move(buffer).share();
}

/// The mean time of a frame in milliseconds, with pictures that take turns.
double meanFrame(const std::vector<Picture>& screens, const std::vector<Picture>& cameras)
{
    auto instruction = std::make_shared<RenderInstruction>();
    instruction->project.layouts = { { 0, Layout::bubble, Corner::bottomRight } };
    Compositor compositor(instruction, 1920, 1080);
    constexpr int warmUp = 10;
    constexpr int frames = 200;
    double start = 0;
    for (int i = 0; i < warmUp + frames; ++i) {
        if (i == warmUp)
            start = threadSeconds();
        const auto index = static_cast<std::size_t>(i);
        compositor.compose(i * frameDuration, screens[index % screens.size()], cameras[index % cameras.size()]);
    }
    return (threadSeconds() - start) * 1000 / frames;
}

void measure()
{
    const std::vector<Picture> cameras{ noise(1280, 720, 1), noise(1280, 720, 2) };
    const std::vector<Picture> screens{ noise(2560, 1440, 3), noise(2560, 1440, 4) };
    const std::vector<Picture> unscaled{ noise(1920, 1080, 5), noise(1920, 1080, 6) };
    report("compose.still_ms", meanFrame({ screens[0] }, cameras), "ms");
    report("compose.full_ms", meanFrame(screens, cameras), "ms");
    report("compose.full_unscaled_ms", meanFrame(unscaled, cameras), "ms");
}

const FigureGroup group("compose", measure);

} // namespace

} // namespace vantry::bench
