#include "app/Launch.h"

#include "base/HostTime.h"
#include "model/CaptureDevices.h"
#include "model/Coroutines.h"
#include "model/Readiness.h"
#include "selftest/RetakeCancel.h"

#include <QCoreApplication>

#include <chrono>
#include <utility>

namespace vantry {

Launch::Launch(AppModel& model, CommandLine line)
    : m_model(model)
    , m_keysNotice(model.notices())
    , m_hotKeys([this](const QString& trouble) { m_keysNotice.warn(trouble); })
    , m_line(std::move(line))
{
}

void Launch::start()
{
    if (!std::exchange(m_launched, true))
        launch(run(), [this](const QString& description) { m_model.setAlert(description); });
}

QCoro::Task<> Launch::run()
{
    m_model.salvage();
    m_model.readiness()->watch();
    if (m_line.open) {
        m_model.open(*m_line.open);
        co_return;
    }
    m_hotKeys.install([this](std::uint32_t id) { m_model.hotkey(id); });
    m_model.devices()->startMeter();
    co_await m_model.devices()->listDevices();
    m_model.devices()->startCamera();
    m_model.devices()->listDisplays();
    if (m_line.retakeCancel) {
        RetakeCancel check(m_model, *m_line.retakeCancel);
        const bool passed = co_await check.run();
        QCoreApplication::exit(passed ? EXIT_SUCCESS : EXIT_FAILURE);
    } else if (m_line.autorecord) {
        co_await autorecord(autorecordWait(*m_line.autorecord));
    }
}

QCoro::Task<> Launch::autorecord(double wait)
{
    const HostTime end = HostClock::now() + std::chrono::round<HostDuration>(std::chrono::duration<double>(wait));
    m_model.record();
    co_await sleepUntil(end);
    m_model.stop(0);
}

} // namespace vantry
