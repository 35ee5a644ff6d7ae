#include "Figure.h"
#include "ProcessorTime.h"

#include "render/BackgroundBlur.h"
#include "support/Photograph.h"

#include <vector>

namespace vantry::bench {

namespace {

/// The mean time of a camera picture in milliseconds: mask, blur and blend.
double meanFrame(int width, int height)
{
    constexpr int warmUp = 10;
    constexpr int frames = 100;
    const Picture still = test::photograph(width, height);
    std::vector<Picture> pictures;
    for (unsigned i = 0; i < 4; ++i)
        pictures.push_back(test::noisy(still, 1, i));
    BackgroundBlur blur;
    double start = 0;
    for (std::size_t i = 0; i < warmUp + frames; ++i) {
        if (i == warmUp)
            start = threadSeconds();
        blur.apply(pictures[i % pictures.size()]);
    }
    return (threadSeconds() - start) * 1000 / frames;
}

void measure()
{
    report("blur.frame_1080_ms", meanFrame(1920, 1080), "ms");
    report("blur.frame_720_ms", meanFrame(1280, 720), "ms");
}

const FigureGroup group("blur", measure);

} // namespace

} // namespace vantry::bench
