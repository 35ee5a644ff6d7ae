#include "WarmRecorder.h"

#include "ProcessorTime.h"

#include <stdexcept>
#include <thread>

namespace vantry::bench {

using namespace std::chrono_literals;

namespace {

template <typename Condition>
void await(const std::string& what, Condition condition)
{
    const auto deadline = HostClock::now() + 10s;
    for (; !condition(); std::this_thread::sleep_for(10ms))
        if (HostClock::now() > deadline)
            throw std::runtime_error("No " + what);
}

} // namespace

WarmRecorder::WarmRecorder(const std::string& microphone, const std::optional<std::string>& camera)
{
    m_recorder.setOnClip([this](const ClipOutcome& outcome) { m_outcome = outcome; });
    m_recorder.setCaptureSystemAudio(true);
    m_recorder.startScreen(displays().at(0)).waitForFinished();
    auto& session = m_recorder.session();
    session.configure(camera, microphone);
    session.startCamera();
    await(microphone, [&] { return session.devices().hasMicrophone(microphone); });
    if (camera)
        await(*camera, [&] { return session.preview().latest().has_value(); });
    std::this_thread::sleep_for(2s); // The sounds' graph is still being changed.
}

WarmRecorder::Take WarmRecorder::record(const std::filesystem::path& file, HostDuration length)
{
    const double spent = processorSeconds();
    const auto wish = HostClock::now();
    m_recorder.beginClip(file); // The screen as it was is in the writer when this returns.
    Take take{ .start = HostClock::now() - wish, .processorPercent = 0, .outcome = {} };
    std::this_thread::sleep_until(wish + length);
    m_recorder.endClip().waitForFinished();
    take.processorPercent = 100 * (processorSeconds() - spent) / seconds(HostClock::now() - wish);
    take.outcome = m_outcome;
    if (!take.outcome.duration)
        throw std::runtime_error(take.outcome.problem);
    return take;
}

} // namespace vantry::bench
