#include "ExportClip.h"
#include "ExportMaterial.h"
#include "Figure.h"
#include "ProcessorTime.h"

#include "render/Player.h"
#include "support/Speakers.h"
#include "support/TemporaryFolder.h"
#include "support/TestMovie.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <random>
#include <stdexcept>
#include <vector>

namespace vantry::bench {

namespace {

using namespace std::chrono_literals;

constexpr int length = 60; // seconds
constexpr int seeks = 200;
constexpr int rebuilds = 40;
constexpr int starts = 20;
constexpr auto mouseInterval = 16ms;
constexpr double dragSeconds = 5;

double milliseconds(HostDuration duration)
{
    return seconds(duration) * 1000;
}

/// The value that `part` of all do not exceed.
double quantile(std::vector<double> values, double part)
{
    std::ranges::sort(values);
    return values.at(static_cast<std::size_t>(std::ceil(part * static_cast<double>(values.size()))) - 1);
}

/// A player in an event loop of its own.
class PreviewBench {
public:
    PreviewBench()
    {
        QObject::connect(
            &m_player, &Player::failed, &m_player, [this](const QString& description) { m_problem = description.toStdString(); });
        QObject::connect(&m_player, &Player::pictureChanged, &m_player, [this] {
            m_shown.push_back({ m_player.time(), HostClock::now() });
        });
    }

    void measure()
    {
        writeExportClip(m_folder / "clip-1.mov", Sounds::Both);
        measureSeeks();
        measureRebuilds();
        measureScrubbing();
        measureStarts();
        measurePlayback();
        measureOffset();
    }

private:
    /// A picture that came, and when it was the project's turn.
    struct Shown {
        double time;
        HostTime at;
    };

    std::shared_ptr<const PlayerItem> itemOf(const Project& project) const
    {
        return makePlayerItem(project, m_folder.path(), project.overlays.empty() ? OverlayImages() : exportBenchImages(project));
    }
    template <typename Condition>
    void runUntil(const Condition& condition)
    {
        while (!condition()) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            if (!m_problem.empty())
                throw std::runtime_error(m_problem);
        }
    }
    void settle()
    {
        runUntil([&] { return !m_player.isSeeking(); });
    }
    void playToTheEnd()
    {
        m_shown.clear();
        m_player.play();
        runUntil([&] { return m_player.state() == Player::State::Paused; });
    }

    void measureSeeks();
    void measureRebuilds();
    void measureScrubbing();
    void measureStarts();
    void measurePlayback();
    void measureOffset();

    int m_argumentCount = 1;
    char m_name[6] = "bench";
    char* m_arguments[2]{ m_name, nullptr };
    QCoreApplication m_application{ m_argumentCount, m_arguments };

    test::TemporaryFolder m_folder;
    const Project m_project = exportBenchProject(length / exportClipSeconds);
    std::vector<Shown> m_shown;
    std::string m_problem;
    Player m_player;
};

/// From the command to the frame, anywhere in the project.
void PreviewBench::measureSeeks()
{
    m_player.setItem(itemOf(m_project), 0);
    settle();
    std::mt19937 random(1);
    std::uniform_real_distribution<double> anywhere(0, length);
    std::vector<double> times;
    for (int i = 0; i < seeks; ++i) {
        const auto start = HostClock::now();
        m_player.seek(anywhere(random));
        settle();
        times.push_back(milliseconds(HostClock::now() - start));
    }
    report("preview.seek_median_ms", quantile(times, 0.5), "ms");
    report("preview.seek_p95_ms", quantile(times, 0.95), "ms");
}

/// From an edit, with its overlays at hand, to its frame.
void PreviewBench::measureRebuilds()
{
    Project project = m_project;
    m_player.setItem(itemOf(project), 7);
    settle();
    std::vector<double> times;
    for (int i = 0; i < rebuilds; ++i) {
        const auto start = HostClock::now();
        project.layouts.front().corner = i % 2 ? Corner::bottomRight : Corner::topLeft;
        m_player.setItem(itemOf(project), 7);
        settle();
        times.push_back(milliseconds(HostClock::now() - start));
    }
    report("preview.rebuild_ms", quantile(times, 0.5), "ms");
    report("preview.rebuild_p95_ms", quantile(times, 0.95), "ms");
}

/// The mouse drags the playhead over all of the project and back again.
void PreviewBench::measureScrubbing()
{
    m_player.setItem(itemOf(m_project), 0);
    settle();
    m_shown.clear();
    const auto start = HostClock::now();
    QTimer mouse;
    QObject::connect(&mouse, &QTimer::timeout, &m_player, [&] {
        const double way = seconds(HostClock::now() - start) / dragSeconds;
        m_player.seek(length * (way < 1 ? way : 2 - way));
    });
    mouse.start(mouseInterval);
    runUntil([&] { return HostClock::now() - start > std::chrono::duration<double>(2 * dragSeconds); });
    report("preview.scrub_fps", static_cast<double>(m_shown.size()) / (2 * dragSeconds), "frames/s");
}

/// From the command to the first frame after the one that is shown. The first time, the sound output is opened.
void PreviewBench::measureStarts()
{
    std::vector<double> times;
    for (int i = 0; i < starts; ++i) {
        m_player.setItem(itemOf(m_project), 5 + i);
        settle();
        m_shown.clear();
        const auto start = HostClock::now();
        m_player.play();
        runUntil([&] { return !m_shown.empty(); });
        times.push_back(milliseconds(m_shown.front().at - start));
        m_player.pause();
        settle();
    }
    report("preview.first_start_ms", times.front(), "ms");
    report("preview.start_ms", quantile({ times.begin() + 1, times.end() }, 0.5), "ms");
}

/// A frame that did not come at all is late, too.
void PreviewBench::measurePlayback()
{
    m_player.setItem(itemOf(m_project), 0);
    settle();
    const double processor = processorSeconds();
    const auto start = HostClock::now();
    playToTheEnd();
    const double took = seconds(HostClock::now() - start);
    std::vector<double> delays;
    delays.reserve(m_shown.size());
    for (const auto& shown : m_shown)
        delays.push_back(seconds(shown.at - start) - shown.time);
    const double usual = quantile(delays, 0.5);
    const auto inTime = std::ranges::count_if(delays, [&](double delay) { return delay < usual + 1.0 / framesPerSecond; });
    report("preview.late_pct", 100.0 * (1 - static_cast<double>(inTime) / (length * framesPerSecond)), "%");
    report("preview.cpu_pct", 100 * (processorSeconds() - processor) / (2 * took), "%");
}

/// How much later than its flash a click is heard.
void PreviewBench::measureOffset()
{
    constexpr int clips = 20;
    test::writeTestMovie(m_folder / "flash.mov", { .duration = 1, .audio = true, .flash = 0.5, .click = 0.5, .tone = 0 });
    Project project;
    project.layouts = { { 0, Layout::screen, Corner::bottomRight } };
    for (int i = 0; i < clips; ++i)
        project.clips.push_back({ .file = "flash.mov", .duration = 1, .keep = 1, .transcript = {} });

    const test::Speakers speakers;
    std::vector<HostTime> flashes;
    const auto watch = QObject::connect(&m_player, &Player::pictureChanged, &m_player, [&] {
        if (m_player.picture().plane(PlaneY).row(540)[960] > test::flashLuma)
            flashes.push_back(HostClock::now());
    });
    m_player.setItem(itemOf(project), 0);
    settle();
    playToTheEnd();
    QObject::disconnect(watch);

    std::vector<double> offsets;
    for (const auto click : speakers.clicks())
        for (const auto flash : flashes)
            if (std::chrono::abs(click - flash) < 500ms)
                offsets.push_back(milliseconds(click - flash));
    if (flashes.size() < clips * 9 / 10 || offsets.size() < flashes.size())
        throw std::runtime_error("Flashes or clicks are missing");
    report("preview.av_offset_ms", quantile(offsets, 0.5), "ms");
}

const FigureGroup group("preview", [] { PreviewBench().measure(); });

} // namespace

} // namespace vantry::bench
