#include "Figure.h"
#include "ProcessorTime.h"

#include "base/HostTime.h"
#include "capture/ScreenGrabber.h"
#include "capture/ScreenStream.h"
#include "support/TestDesktop.h"

#include <stdexcept>
#include <thread>

namespace vantry::bench {

namespace {

constexpr std::uint32_t leftOutProcess = 4'000'000; // no process has this number

/// A desktop as in a recording: a window over the whole screen, and above it the panels that are left out.
struct Scene {
    Scene()
    {
        display = displays().at(0);
        window = desktop.open({ .place = { 0, 0, display.width, display.height } });
        desktop.open({ .place = { 700, 20, 420, 72 }, .process = leftOutProcess });
        desktop.open({ .place = { 1600, 760, 280, 280 }, .process = leftOutProcess });
        desktop.finish();
    }

    void paint(std::uint32_t colour)
    {
        desktop.fill(window, { 0, 0, display.width, display.height }, colour);
        desktop.finish();
    }

    test::TestDesktop desktop;
    Display display;
    xcb_window_t window = XCB_NONE;
};

double milliseconds(HostDuration duration)
{
    return seconds(duration) * 1000;
}

void measureGrab()
{
    Scene scene;
    ScreenGrabber grabber(scene.display, { leftOutProcess });
    constexpr int warmUp = 10;
    constexpr int frames = 200;
    HostDuration spent{};
    for (int i = 0; i < warmUp + frames; ++i) {
        scene.paint(i % 2 == 0 ? 0x2060A0 : 0xE0C040);
        const auto start = HostClock::now();
        // The server shows what was painted after our first question, so the first grab may still find nothing.
        while (!grabber.grab()) { }
        if (i >= warmUp)
            spent += HostClock::now() - start;
    }
    report("capture.grab_ms", milliseconds(spent) / frames, "ms");
}

void measureIdle()
{
    Scene scene;
    Worker queue("capture");
    ScreenStream stream(scene.display, queue, { .onFrame = [](const ScreenFrame&) {}, .onError = [](const AppError&) {} },
        { .excludedProcesses = { leftOutProcess } });
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const auto start = HostClock::now();
    const double spent = processorSeconds();
    std::this_thread::sleep_for(std::chrono::seconds(5));
    report("capture.idle_pct", 100 * (processorSeconds() - spent) / seconds(HostClock::now() - start), "%");
}

void measure()
{
    measureGrab();
    measureIdle();
}

const FigureGroup group("capture", measure);

} // namespace

} // namespace vantry::bench
