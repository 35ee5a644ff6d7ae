#include "model/storm/Commands.h"

#include "capture/HotKeys.h"
#include "model/CaptureDevices.h"
#include "model/Coroutines.h"
#include "model/PreviewFlow.h"
#include "support/Command.h"
#include "support/PumpUntil.h"

#include <array>
#include <csignal>
#include <iostream>
#include <unistd.h>

namespace vantry::storm {

using namespace Qt::StringLiterals;

Commands::Commands(AppModel& model, unsigned seed)
    : m_model(model)
    , m_seed(seed)
{
}

void Commands::run(int number)
{
    // So that a process that goes on where another one ended does what that would have done.
    m_random.seed(m_seed * 100'003U + static_cast<unsigned>(number));
    using Command = void (Commands::*)();
    struct Weighted {
        Command command;
        int weight;
    };
    constexpr std::array all{ Weighted{ &Commands::record, 16 }, Weighted{ &Commands::stop, 16 }, Weighted{ &Commands::steer, 16 },
        Weighted{ &Commands::change, 20 }, Weighted{ &Commands::look, 14 }, Weighted{ &Commands::open, 8 },
        Weighted{ &Commands::exportVideo, 4 }, Weighted{ &Commands::transcribe, 3 }, Weighted{ &Commands::choose, 3 },
        Weighted{ &Commands::endProcess, 3 } };
    int left = pick(103);
    for (const auto& [command, weight] : all) {
        left -= weight;
        if (left < 0) {
            (this->*command)();
            break;
        }
    }
    constexpr std::array waits{ 0, 20, 200, 1000 };
    wait(waits[static_cast<std::size_t>(pick(waits.size()))]);
}

/// Half of the time until something is recorded, so that there are clips.
void Commands::record()
{
    pick(3) == 0 ? m_model.record(time()) : m_model.record();
    if (pick(2) == 0)
        return;
    test::pumpUntil([&] { return m_model.phase() == Phase::recording() || m_model.isIdle(); }, std::chrono::seconds(20));
    test::runCommand("xdotool mousemove " + std::to_string(pick(600)) + " " + std::to_string(pick(300)));
    wait(2000);
}

void Commands::stop()
{
    switch (pick(6)) {
    case 0:
        return m_model.cancelStart();
    case 1:
        return m_model.hotkey(static_cast<std::uint32_t>(HotKey::GoBack));
    default:
        return m_model.stop(pick(4));
    }
}

void Commands::steer()
{
    m_model.hotkey(static_cast<std::uint32_t>(3 + pick(4)));
}

void Commands::change()
{
    const double at = time();
    const double size = 0.1 * (1 + pick(5));
    switch (pick(5)) {
    case 0:
        m_model.edit(Rebuild::No, [&](Project& project) { project.name += "x"; });
        break;
    case 1:
        m_model.edit(Rebuild::Yes, [&](Project& project) { project.bubbleSize = size; });
        break;
    case 2:
        m_model.edit(Rebuild::Yes, [&](Project& project) {
            project.overlays.push_back(
                { .start = at, .duration = 2, .text = "Hi", .html = "<b>Hi</b>", .x = 0.5, .y = 0.5, .width = size });
        });
        break;
    case 3:
        m_model.edit(Rebuild::Yes, [&](Project& project) {
            if (!project.overlays.empty())
                project.overlays.pop_back();
        });
        break;
    default:
        m_model.edit(Rebuild::Yes, [&](Project& project) { project.systemVolume = size; });
    }
}

void Commands::look()
{
    switch (pick(4)) {
    case 0:
        return m_model.refreshPlayer();
    case 1:
        return m_model.preview()->toggle();
    case 2:
        return m_model.preview()->step(pick(5) - 2);
    default:
        return m_model.seek(time());
    }
}

void Commands::open()
{
    const auto recent = m_model.recent();
    if (pick(4) == 0 || recent.empty())
        return m_model.newRecording();
    m_model.open(recent[static_cast<std::size_t>(pick(static_cast<int>(recent.size())))]);
}

void Commands::exportVideo()
{
    if (pick(3) == 0)
        return m_model.cancelExport();
    m_model.settings()->setExportHeight(720);
    m_model.exportTo(m_model.root().parent_path() / "video.mp4");
}

void Commands::transcribe()
{
    pick(2) == 0 ? m_model.transcribeMissing() : m_model.salvage();
}

void Commands::choose()
{
    m_model.settings()->setSystemAudio(pick(2) == 0);
    m_model.settings()->setSetupLayout(static_cast<Layout>(pick(3)));
    const auto& mics = m_model.devices()->mics();
    if (!mics.empty())
        m_model.settings()->setMicID(
            QString::fromStdString(mics[static_cast<std::size_t>(pick(static_cast<int>(mics.size())))].id));
}

/// As somebody does who quits, or a power cut at any moment.
void Commands::endProcess()
{
    if (pick(2) == 0)
        return m_model.quit();
    wait(1500);
    kill(getpid(), SIGKILL);
}

double Commands::time()
{
    return m_model.liveTime() * pick(11) / 10;
}

void Commands::wait(int longest)
{
    const auto until = HostClock::now() + std::chrono::milliseconds(longest == 0 ? 0 : pick(longest));
    test::pumpUntil([&] { return HostClock::now() >= until; });
}

} // namespace vantry::storm
