#include "Figure.h"

#include "project/ProjectIndex.h"

#include <algorithm>
#include <chrono>
#include <random>

using namespace vantry;
using namespace vantry::bench;

namespace {

constexpr int items = 10'000;
constexpr double length = 3600;
constexpr int lookups = 1'000'000;

/// Three or so overlays at a time, given in no order.
std::vector<Overlay> scatteredOverlays(std::mt19937& random)
{
    std::uniform_real_distribution<double> start(0, length);
    std::vector<Overlay> overlays(items);
    for (auto& overlay : overlays) {
        overlay.start = start(random);
        overlay.duration = 1;
    }
    return overlays;
}

/// The hardest for an index: one from beginning to end, and pyramids of ten that hold each other.
std::vector<Overlay> nestedOverlays(std::mt19937& random)
{
    constexpr int height = 10;
    constexpr int pyramids = items / height;
    constexpr double width = length / pyramids;
    std::vector<Overlay> overlays;
    for (int pyramid = 0; pyramid < pyramids; ++pyramid) {
        for (int step = 0; step < height; ++step) {
            const auto inset = width / (2 * height) * step;
            overlays.push_back({ .start = pyramid * width + inset, .duration = width - 2 * inset });
        }
    }
    overlays[0] = { .start = 0, .duration = length };
    std::ranges::shuffle(overlays, random);
    return overlays;
}

std::vector<LayoutEvent> changingLayouts()
{
    std::vector<LayoutEvent> layouts;
    layouts.reserve(items);
    for (int event = 0; event < items; ++event)
        layouts.push_back(
            { .time = event * (length / items), .layout = static_cast<Layout>(event % 3), .corner = Corner::topLeft });
    return layouts;
}

/// Mean time of one frame's look-ups, at times in no order.
double nanosecondsPerFrame(const Project& project, std::mt19937& random)
{
    const ProjectIndex index(project);
    std::uniform_real_distribution<double> anyTime(0, length);
    std::vector<double> times(4096);
    std::ranges::generate(times, [&] { return anyTime(random); });

    std::size_t found = 0;
    const auto begin = std::chrono::steady_clock::now();
    for (int lookup = 0; lookup < lookups; ++lookup) {
        const auto time = times[static_cast<std::size_t>(lookup) % times.size()];
        found += index.visibleOverlays(time).size() + (index.layoutAt(time).previous ? 1 : 0);
    }
    const std::chrono::duration<double, std::nano> spent = std::chrono::steady_clock::now() - begin;
    // Every time has a layout, so nothing found means that nothing was asked.
    return found > 0 ? spent.count() / lookups : 0;
}

void measure()
{
    std::mt19937 random(1);
    Project project{ .layouts = changingLayouts() };
    double worst = 0;
    for (auto overlays : { scatteredOverlays(random), nestedOverlays(random) }) {
        project.overlays = std::move(overlays);
        worst = std::max(worst, nanosecondsPerFrame(project, random));
    }
    report("project.frame_lookup_ns", worst, "ns");
}

const FigureGroup group("project", measure);

} // namespace
