#include "Figure.h"

#include "render/HTMLRenderer.h"

#include <QCoreApplication>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace vantry::bench {

namespace {

constexpr int starts = 7;
constexpr int renders = 200;

/// Looks as any other of its kind, but was never rendered before.
Overlay bubble(int number)
{
    auto overlay = Overlay::make(OverlayKind::bubble, "Press this button first 👇", 0);
    overlay.html += "<!--" + std::to_string(number) + "-->";
    return overlay;
}

Bitmap rendered(HTMLRenderer& renderer, int number)
{
    if (auto image = renderer.image(bubble(number)).result())
        return *image;
    throw std::runtime_error("A bubble was not rendered");
}

double milliseconds(HTMLRenderer& renderer, int number)
{
    const auto start = std::chrono::steady_clock::now();
    rendered(renderer, number);
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// From the request to the bitmap, with the start of the helper in it or not.
void measureTimes()
{
    std::vector<double> first, next;
    for (int start = 0; start < starts; ++start) {
        HTMLRenderer renderer;
        first.push_back(milliseconds(renderer, 0));
        for (int number = 1; number <= 10; ++number)
            next.push_back(milliseconds(renderer, number));
    }
    report("html.first_ms", median(first), "ms");
    report("html.next_ms", median(next), "ms");
}

bool isEqual(const Bitmap& a, const Bitmap& b)
{
    return a.width() == b.width() && a.height() == b.height()
        && std::memcmp(a.row(0), b.row(0), static_cast<std::size_t>(a.width()) * static_cast<std::size_t>(a.height()) * 4) == 0;
}

/// While every core has something else to do.
void measureEquality()
{
    std::atomic<long> work = 0;
    std::vector<std::jthread> load;
    for (unsigned core = 0; core < std::thread::hardware_concurrency(); ++core)
        load.emplace_back([&work](const std::stop_token& stop) {
            while (!stop.stop_requested())
                ++work;
        });
    HTMLRenderer renderer;
    const auto first = rendered(renderer, 0);
    int equal = 1;
    for (int number = 1; number < renders; ++number)
        equal += isEqual(rendered(renderer, number), first) ? 1 : 0;
    report("html.identical_pct", 100.0 * equal / renders, "%");
}

void measure()
{
    int count = 1;
    char name[] = "bench";
    char* arguments[] = { name, nullptr };
    const QCoreApplication application(count, arguments);
    measureTimes();
    measureEquality();
}

const FigureGroup group("html", measure);

} // namespace

} // namespace vantry::bench
