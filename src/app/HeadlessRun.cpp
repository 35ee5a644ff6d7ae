#include "app/HeadlessRun.h"

#include "base/AppError.h"
#include "base/HostTime.h"
#include "model/CaptureDevices.h"
#include "model/Coroutines.h"
#include "model/ExportFlow.h"
#include "model/Paths.h"

#include <QCoreApplication>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <system_error>
#include <unistd.h>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

void say(const QString& text)
{
    std::fprintf(stderr, "%s\n", text.toUtf8().constData());
}

/// Throws AppError when no video can be written there, before an hour is recorded for it.
void checkDestination(const std::filesystem::path& file)
{
    const auto folder = file.parent_path();
    if (file.filename().empty() || std::filesystem::is_directory(file))
        throw AppError("Cannot export to " + file.string() + ": It is a folder");
    if (::access(folder.c_str(), W_OK) != 0)
        throw AppError("Cannot export into " + folder.string() + ": " + std::generic_category().message(errno));
}

} // namespace

HeadlessRun::HeadlessRun(AppModel& model, CommandLine line)
    : m_model(model)
    , m_line(std::move(line))
{
    connect(&m_model, &AppModel::busyChanged, this, [this] {
        if (m_model.busy())
            m_progress.show(*m_model.busy(), m_model.exportProgress().value_or(0));
    });
}

void HeadlessRun::start()
{
    launch(run(), [](const QString& description) {
        say("vantry: "_L1 + description);
        QCoreApplication::exit(EXIT_FAILURE);
    });
}

QCoro::Task<> HeadlessRun::run()
{
    int status = co_await serve();
    m_progress.end();
    if (!co_await m_model.saved())
        status = failed();
    QCoreApplication::exit(status);
}

QCoro::Task<int> HeadlessRun::serve()
{
    m_destination = std::filesystem::absolute(*m_line.exportFile);
    checkDestination(m_destination);
    if (m_line.open) {
        co_await m_model.salvage(*m_line.open);
        m_model.open(*m_line.open);
    } else
        co_await record(autorecordWait(*m_line.autorecord));
    if (m_model.alert())
        co_return failed();
    if (m_signal != 0)
        co_return interrupted();
    co_return co_await exportVideo();
}

QCoro::Task<> HeadlessRun::record(double wait)
{
    const HostTime end = HostClock::now() + std::chrono::round<HostDuration>(std::chrono::duration<double>(wait));
    const auto telling = connect(&m_model, &AppModel::statusChanged, this, [this] { say(m_model.status().value_or(QString())); });
    m_model.devices()->listDisplays();
    co_await m_model.devices()->listDevices();
    m_model.record();
    if (underWay())
        say(u"Recording…"_s);
    while (underWay() && m_signal == 0 && HostClock::now() < end)
        co_await nextEmission(
            &m_model, &AppModel::phaseChanged, std::chrono::ceil<std::chrono::milliseconds>(end - HostClock::now()));
    if (m_model.phase().isCountdown() && m_signal == 0)
        m_model.setAlert(u"The recording did not begin in time"_s);
    m_model.cancelStart();
    m_model.stop(0);
    while (underWay())
        co_await nextEmission(&m_model, &AppModel::phaseChanged);
    disconnect(telling);
}

QCoro::Task<int> HeadlessRun::exportVideo()
{
    const auto outcome =
        co_await m_model.exporting().run(m_destination, m_line.height.value_or(m_model.settings()->exportHeight()));
    m_progress.end();
    switch (outcome) {
    case ExportFlow::Outcome::Done:
        if (const QString& damage = m_model.exporting().damage(); !damage.isEmpty())
            say("vantry: "_L1 + damage);
        std::printf("%s\n", m_destination.c_str());
        co_return EXIT_SUCCESS;
    case ExportFlow::Outcome::Cancelled:
        co_return interrupted();
    case ExportFlow::Outcome::Failed:
    case ExportFlow::Outcome::NothingToExport:
        break;
    }
    co_return failed();
}

void HeadlessRun::interrupt(int signal)
{
    m_signal = signal;
    m_model.cancelExport();
    m_model.cancelStart();
    m_model.stop(0);
}

bool HeadlessRun::underWay() const
{
    return m_model.phase() != Phase::setup() && m_model.phase() != Phase::editing();
}

int HeadlessRun::interrupted() const
{
    say(u"Interrupted"_s);
    sayWhereTheRecordingIs();
    return 128 + m_signal;
}

int HeadlessRun::failed() const
{
    say("vantry: "_L1 + m_model.alert().value_or(u"There is nothing to export"_s));
    sayWhereTheRecordingIs();
    return EXIT_FAILURE;
}

void HeadlessRun::sayWhereTheRecordingIs() const
{
    if (m_line.autorecord && m_model.folder())
        say("The recording is in "_L1 + text(*m_model.folder()));
}

} // namespace vantry
