#include "Figure.h"
#include "RecordScene.h"

#include "media/MediaTime.h"
#include "project/ProjectFile.h"
#include "support/Command.h"
#include "support/FlashAndClick.h"
#include "support/MovieProbe.h"
#include "support/TemporaryFolder.h"
#include "support/XServer.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <span>
#include <stdexcept>
#include <thread>

namespace vantry::bench {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr int minutes = 60;
constexpr int framesPerMinute = 60 * framesPerSecond;

/// The whole program, which records a screen on which somebody types, a camera that flashes, a microphone that clicks at the same
/// moments, and another program's tone.
class HourBench {
public:
    HourBench();
    void measure();

private:
    double anonymousMegabytes() const;
    void reportMemory(int minute);
    void reportSync(const std::string& figure, std::span<const double> offsets);
    void reportMissed(const std::string& figure, const std::string& stream);
    void reportDropped();

    const test::TemporaryFolder m_home;
    const test::XServer m_screen{ 1280, 720 };
    const RecordScene m_scene{ RecordScene::Flashes::WholeSeconds };
    const ClickMicrophone m_microphone;
    std::unique_ptr<test::Program> m_program;
    std::chrono::steady_clock::time_point m_start;
    fs::path m_clip;
};

HourBench::HourBench()
{
    fs::create_directories(m_home / "config/vantry");
    std::ofstream(m_home / "config/vantry/settings.ini")
        << "[General]\ncameraID=" << m_scene.camera() << "\nmicID=" << m_microphone.name() << "\nlayout=bubble\n";
    const std::string home = m_home.path().string();
    // A program reads and writes nothing of ours.
    const std::string intoLog = "exec \"$@\" 2>'" + (m_home / "log").string() + "'";
    m_program = std::make_unique<test::Program>(std::vector<std::string>{ "sh", "-c", intoLog, "sh", "env", "HOME=" + home,
        "XDG_CONFIG_HOME=" + home + "/config", "XDG_DATA_HOME=" + home + "/data", "XDG_VIDEOS_DIR=" + home + "/Videos",
        "QT_LOGGING_RULES=vantry.capture.info=true", VANTRY_PROGRAM, "--autorecord", std::to_string(60 * minutes + 1) });
    m_start = std::chrono::steady_clock::now();
}

/// What is the program's alone and in no file.
double HourBench::anonymousMegabytes() const
{
    std::ifstream rollup("/proc/" + std::to_string(m_program->pid()) + "/smaps_rollup");
    double kilobytes = 0;
    for (std::string line; std::getline(rollup, line);)
        if (line.starts_with("Anonymous:"))
            kilobytes += std::stod(line.substr(line.find(':') + 1));
    return kilobytes / 1024;
}

void HourBench::reportMemory(int minute)
{
    std::this_thread::sleep_until(m_start + std::chrono::minutes(minute));
    report("hour.memory_" + std::to_string(minute) + "_mb", anonymousMegabytes(), "MB");
}

/// Over a minute of the clip: the mean, and how far the flash and the click are apart that are furthest.
void HourBench::reportSync(const std::string& figure, std::span<const double> offsets)
{
    double sum = 0, furthest = 0;
    for (const double offset : offsets) {
        sum += offset;
        furthest = std::max(furthest, std::abs(offset));
    }
    report("hour.sync_" + figure + "_ms", 1000 * sum / static_cast<double>(offsets.size()), "ms");
    report("hour.sync_" + figure + "_most_ms", 1000 * furthest, "ms");
}

void HourBench::reportMissed(const std::string& figure, const std::string& stream)
{
    const double count = std::stod(test::probeStream(m_clip, stream).at("nb_frames"));
    report("hour.missed_" + figure + "_pct", 100 * (1 - count / (minutes * framesPerMinute)), "%");
}

/// Of what the sources delivered, over all tracks.
void HourBench::reportDropped()
{
    std::ifstream log(m_home / "log");
    double taken = 0, dropped = 0;
    for (std::string line; std::getline(log, line);) {
        int track = 0;
        double took = 0, lost = 0;
        const auto at = line.find("clip track");
        if (at == std::string::npos
            || std::sscanf(line.c_str() + at, "clip track %d took %lf dropped %lf", &track, &took, &lost) != 3)
            continue;
        taken += took + lost;
        dropped += lost;
        report("hour.dropped_" + std::to_string(track), lost, "samples");
    }
    report("hour.dropped_pct", taken > 0 ? 100 * dropped / taken : 100, "%");
}

void HourBench::measure()
{
    reportMemory(1);
    reportMemory(5);
    for (int minute = 10; minute <= minutes; minute += 10)
        reportMemory(minute);
    const auto project = fs::directory_iterator(m_home / "Videos/Vantry")->path();
    const auto deadline = m_start + std::chrono::minutes(minutes + 5);
    while (!fs::exists(project / projectFileName) || loadProject(project).clips.empty()) {
        if (std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error("The recording did not end");
        std::this_thread::sleep_for(500ms);
    }
    const Clip clip = loadProject(project).clips.front();
    m_clip = project / clip.file;
    report("hour.clip_s", clip.duration, "s");
    reportDropped();
    reportMissed("screen", "v:0");
    reportMissed("camera", "v:1");
    // A part that is cut out has a time 0 of its own, so all of it is looked at.
    const auto offsets = test::clicksAfterFlashes(m_clip, "v:1", 1);
    constexpr std::size_t minute = 60;
    if (offsets.size() < (minutes - 1) * minute)
        throw std::runtime_error("Only " + std::to_string(offsets.size()) + " flashes with a click");
    const std::span all(offsets);
    reportSync("begin", all.first(minute));
    reportSync("middle", all.subspan(all.size() / 2, minute));
    reportSync("end", all.last(minute));
}

const FigureGroup group(
    "hour", [] { HourBench().measure(); }, FigureGroup::When::Named);

} // namespace

} // namespace vantry::bench
