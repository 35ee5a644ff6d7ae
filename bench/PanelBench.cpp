#include "Figure.h"
#include "MouseButton.h"
#include "RecordScene.h"
#include "TimeStrip.h"

#include "project/ProjectFile.h"
#include "support/Command.h"
#include "support/HoldsSoon.h"
#include "support/MovieProbe.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace vantry::bench {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr const char* microphone = "test-microphone"; // Of the private desktop; it hears a tone.
constexpr const char* panelTitle = "'Vantry controls'";
constexpr int stopX = 665, stopY = 32; ///< The middle of the button, from the panel's corner.

void require(bool holds, const char* what)
{
    if (!holds)
        throw std::runtime_error(what);
}

/// The whole program with its windows, which records a screen, a camera, a microphone and another program's tone.
class PanelBench {
public:
    PanelBench();
    void measureCost();
    void measureStop();

private:
    fs::path project() const;
    std::size_t clips() const;
    bool isPanelSeen() const;
    void awaitRecording() const;
    double panelSeconds() const;
    double stopOnce(std::size_t clip) const;

    const test::TemporaryFolder m_home;
    const test::XServer m_screen{ 1920, 1080 };
    const RecordScene m_scene;
    std::unique_ptr<test::Program> m_program;
};

PanelBench::PanelBench()
{
    fs::create_directories(m_home / "config/vantry");
    std::ofstream(m_home / "config/vantry/settings.ini")
        << "[General]\ncameraID=" << m_scene.camera() << "\nmicID=" << microphone << "\nlayout=bubble\n";
    const std::string home = m_home.path().string();
    m_program =
        std::make_unique<test::Program>(std::vector<std::string>{ "env", "HOME=" + home, "XDG_CONFIG_HOME=" + home + "/config",
            "XDG_DATA_HOME=" + home + "/data", "XDG_VIDEOS_DIR=" + home + "/Videos", VANTRY_PROGRAM });
    require(test::holdsSoon([] { return !test::runCommand("xdotool search --onlyvisible --name '^Vantry$' || true").empty(); }),
        "The program did not start");
}

fs::path PanelBench::project() const
{
    const fs::path root = m_home / "Videos/Vantry";
    return fs::exists(root) && !fs::is_empty(root) ? fs::directory_iterator(root)->path() : fs::path();
}

std::size_t PanelBench::clips() const
{
    return fs::exists(project() / projectFileName) ? loadProject(project()).clips.size() : 0;
}

/// The key may come before the program listens to it.
void PanelBench::awaitRecording() const
{
    const auto files = [this] {
        const auto isMovie = [](const fs::directory_entry& file) { return file.path().extension() == ".mov"; };
        return project().empty() ? 0 : std::ranges::count_if(fs::directory_iterator(project()), isMovie);
    };
    const auto before = files();
    require(test::holdsSoon([this] {
        if (isPanelSeen())
            return true;
        test::runCommand("xdotool key ctrl+alt+r sleep 0.5");
        return isPanelSeen();
    }),
        "The panel did not come");
    require(test::holdsSoon([&] { return files() > before; }), "The recording did not start");
}

bool PanelBench::isPanelSeen() const
{
    return !test::runCommand(std::string("xdotool search --onlyvisible --name ") + panelTitle + " || true").empty();
}

/// The processor time of the main thread and of whatever paints: all that the panels need, and the model's own little.
double PanelBench::panelSeconds() const
{
    constexpr std::array painters{ "vantry:", "QSG", "llvmpipe", "QXcb", "QQml" };
    double sum = 0;
    for (const auto& thread : fs::directory_iterator("/proc/" + std::to_string(m_program->pid()) + "/task")) {
        std::string name;
        std::getline(std::ifstream(thread.path() / "comm"), name);
        const bool isMain = thread.path().filename() == std::to_string(m_program->pid());
        const auto paints = [&](const std::string& start) { return name.starts_with(start); };
        double nanoseconds = 0;
        if ((isMain || std::ranges::any_of(painters, paints)) && std::ifstream(thread.path() / "schedstat") >> nanoseconds)
            sum += nanoseconds / 1e9;
    }
    return sum;
}

/// A minute in which somebody speaks and is seen, of one core.
void PanelBench::measureCost()
{
    awaitRecording();
    std::this_thread::sleep_for(5s);
    const double before = panelSeconds();
    const auto start = HostClock::now();
    std::this_thread::sleep_for(60s);
    report("ui.panel_cpu_pct", 100 * (panelSeconds() - before) / seconds(HostClock::now() - start), "%");
}

/// How far the end of the clip is from the press of the button, in seconds.
double PanelBench::stopOnce(std::size_t clip) const
{
    const MouseButton button;
    awaitRecording();
    std::this_thread::sleep_for(2s);
    test::runCommand("eval $(xdotool search --onlyvisible --name " + std::string(panelTitle)
        + " getwindowgeometry --shell) && xdotool mousemove $((X + " + std::to_string(stopX) + ")) $((Y + " + std::to_string(stopY)
        + ")) sleep 0.5");
    const HostTime pressed = HostClock::now();
    button.press();
    std::this_thread::sleep_for(80ms); // As a finger does.
    button.release();
    require(test::holdsSoon([&] { return clips() > clip; }), "The recording did not end");
    const Clip ended = loadProject(project()).clips.at(clip);
    const auto file = project() / ended.file;
    const auto shown = TimeStrip::readIn(file, pressed);
    const auto frames = test::probeFrames(file, "v:0");
    // What a picture shows is older than the picture: the freshest one tells best when the clip began.
    double start = -1e9;
    for (std::size_t i = 0; i < std::min(shown.size(), frames.size()); ++i)
        start = std::max(start, seconds(shown[i] - pressed) - frames[i].time);
    return std::abs(start + ended.duration);
}

/// The worst of several, while two other programs want both cores.
void PanelBench::measureStop()
{
    constexpr std::size_t times = 5;
    const TimeStrip strip;
    const std::vector<std::string> endless{ "sh", "-c", "while :; do :; done" };
    const test::Program load(endless), more(endless);
    double worst = 0;
    for (std::size_t clip = 0; clip < times; ++clip)
        worst = std::max(worst, stopOnce(clip));
    report("panel.stop_ms", 1000 * worst, "ms");
}

const FigureGroup cost("ui", [] { PanelBench().measureCost(); });
const FigureGroup stop("panel", [] { PanelBench().measureStop(); });

} // namespace

} // namespace vantry::bench
