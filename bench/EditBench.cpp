#include "Figure.h"

#include "model/AppModel.h"
#include "model/CaptureDevices.h"
#include "model/Coroutines.h"
#include "project/ProjectFile.h"
#include "support/PumpUntil.h"
#include "support/TemporaryFolder.h"

#include <QCoreApplication>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace vantry::bench {

namespace {

constexpr int edits = 2000;
constexpr auto pause = std::chrono::milliseconds(5);

double p99(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() * 99 / 100];
}

template <typename Function>
double milliseconds(Function function)
{
    const auto start = HostClock::now();
    function();
    return 1000 * seconds(HostClock::now() - start);
}

void wait(HostDuration length)
{
    const auto until = HostClock::now() + length;
    test::pumpUntil([until] { return HostClock::now() >= until; });
}

void record(AppModel& model)
{
    QCoro::waitFor(model.devices()->listDevices());
    model.devices()->startCamera();
    model.record();
    if (!test::pumpUntil([&] { return model.phase() == Phase::recording(); }))
        throw std::runtime_error("Nothing is recorded");
}

/// An hour's worth of changes and overlays.
void fill(Project& project)
{
    for (int i = 0; i < 500; ++i)
        project.layouts.push_back({ .time = 7.0 * i + 1, .layout = static_cast<Layout>(i % 3), .corner = Corner::topLeft });
    for (int i = 0; i < 200; ++i)
        project.overlays.push_back({ .start = 17.0 * i, .duration = 5, .html = std::string(2000, 'x') });
}

/// How long an edit holds the main thread while a clip is written to the same disk, and how long the disk takes for it.
void measure()
{
    int count = 1;
    char name[] = "bench";
    char* arguments[]{ name, nullptr };
    const QCoreApplication application(count, arguments);
    const test::TemporaryFolder folder;
    AppModel model({ .root = folder / "Vantry", .settingsFile = folder / "settings.ini", .transcribe = Transcribe::OnRequest });
    record(model);
    model.edit(Rebuild::No, fill);
    std::vector<double> onMainThread, onDisk;
    for (int i = 0; i < edits; ++i) {
        onMainThread.push_back(
            milliseconds([&] { model.edit(Rebuild::No, [i](Project& project) { project.name = std::to_string(i); }); }));
        wait(pause);
        if (i % 100 == 0)
            onDisk.push_back(milliseconds([&] { saveProject(*model.project(), folder.path()); }));
    }
    model.stop(0);
    test::pumpUntil([&] { return model.phase() == Phase::editing(); });
    report("edit.main_thread_ms", p99(onMainThread), "ms");
    report("edit.disk_ms", p99(onDisk), "ms");
}

const FigureGroup group("edit", measure);

} // namespace

} // namespace vantry::bench
