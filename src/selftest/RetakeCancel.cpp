#include "selftest/RetakeCancel.h"

#include "model/Coroutines.h"
#include "project/ProjectFile.h"
#include "project/Timeline.h"

#include <charconv>
#include <chrono>
#include <cstdio>
#include <string>

namespace vantry {

using namespace std::chrono_literals;

namespace {

constexpr double nowhere = -1;

double kept(const std::shared_ptr<const Project>& project, double otherwise)
{
    return project ? totalLength(*project) : otherwise;
}

double keptInFile(const std::filesystem::path& folder)
{
    try {
        return totalLength(loadProject(folder));
    } catch (const std::exception&) {
        return nowhere;
    }
}

std::string shortest(double number)
{
    char digits[32];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), number);
    return std::string(digits, end.ptr);
}

std::string description(Phase phase)
{
    switch (phase.kind()) {
    case Phase::Kind::Setup:
        return "setup";
    case Phase::Kind::Countdown:
        return "countdown(" + std::to_string(phase.secondsLeft()) + ")";
    case Phase::Kind::Recording:
        return "recording";
    case Phase::Kind::Saving:
        return "saving";
    case Phase::Kind::Editing:
        break;
    }
    return "editing";
}

} // namespace

RetakeCancel::RetakeCancel(AppModel& model, std::filesystem::path folder)
    : m_model(model)
    , m_folder(std::move(folder))
{
}

QCoro::Task<bool> RetakeCancel::run()
{
    m_model.open(m_folder);
    const double before = kept(m_model.project(), 0);
    m_model.setPlayhead(1);
    m_model.record(m_model.playhead());
    co_await sleepUntil(HostClock::now() + 1500ms);
    std::printf("phase before cancel: %s\n", description(m_model.phase()).c_str());
    m_model.cancelStart();
    co_await sleepUntil(HostClock::now() + 3s);

    const double now = kept(m_model.project(), nowhere);
    const double saved = keptInFile(m_folder);
    const bool unchanged = m_model.phase() == Phase::editing() && now == before && saved == before;
    if (unchanged) {
        std::printf("✓ cancelled retake cut nothing (%s s kept)\n", shortest(before).c_str());
    } else {
        std::printf("✗ cancelled retake changed the project: %s s, saved %s s, was %s s\n", shortest(now).c_str(),
            shortest(saved).c_str(), shortest(before).c_str());
    }
    std::fflush(stdout);
    co_return unchanged;
}

} // namespace vantry
