#include "model/ExportFlow.h"

#include "base/Background.h"
#include "model/AppModel.h"
#include "model/Coroutines.h"
#include "model/DamageText.h"
#include "model/DetailsFile.h"
#include "model/Paths.h"
#include "render/Exporter.h"

#include <QCoroFuture>
#include <QPointer>

#include <chrono>
#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

ExportFlow::ExportFlow(AppModel& model, Reveal reveal)
    : m_model(model)
    , m_reveal(std::move(reveal))
    , m_notice(model.notices())
    , m_damage(model.notices())
{
    m_poll.setInterval(300ms);
    connect(&m_poll, &QTimer::timeout, this, &ExportFlow::showProgress);
    connect(&m_model, &AppModel::folderChanged, this, &ExportFlow::clearNotices);
}

ExportFlow::~ExportFlow()
{
    cancel();
}

void ExportFlow::start(const std::filesystem::path& file)
{
    launch(runWithSettings(file), [flow = QPointer(this)](const QString& description) {
        if (flow)
            flow->fail(description);
    });
}

QCoro::Task<> ExportFlow::runWithSettings(std::filesystem::path file)
{
    co_await run(std::move(file), m_model.settings()->exportHeight());
}

QCoro::Task<ExportFlow::Outcome> ExportFlow::run(std::filesystem::path file, int height)
{
    if (m_running || !m_model.project() || !m_model.folder())
        co_return Outcome::NothingToExport;
    const QPointer<ExportFlow> self(this);
    begin();
    ExportOptions options = optionsFor(file, height);
    const YouTubeInfo details = options.project.youtube;
    Outcome outcome = Outcome::Done;
    QString failure;
    std::vector<Damage> damage;
    try {
        options.images = co_await m_model.overlayImages(options.cancel);
        if (!self)
            co_return Outcome::Cancelled;
        ExportResult result = co_await makeVideo(std::move(options));
        outcome = result.outcome == ExportOutcome::Finished ? Outcome::Done : Outcome::Cancelled;
        damage = std::move(result.damage);
    } catch (const std::exception& error) {
        outcome = Outcome::Failed;
        failure = describe(error);
    }
    if (!self)
        co_return Outcome::Cancelled;
    end();
    if (outcome == Outcome::Failed)
        fail(failure);
    if (outcome == Outcome::Done) {
        m_damage.warn(damageText(damage));
        deliver(details, file);
    }
    co_return outcome;
}

ExportOptions ExportFlow::optionsFor(const std::filesystem::path& file, int height) const
{
    return {
        .project = *m_model.project(),
        .folder = *m_model.folder(),
        .destination = file,
        .height = height,
        .onProgress = [fraction = m_fraction](double value) { *fraction = value; },
        .cancel = m_cancel.get_token(),
    };
}

/// On the worker, so that the views stay alive meanwhile.
QFuture<ExportResult> ExportFlow::makeVideo(ExportOptions options)
{
    return inBackground(m_worker, [options = std::move(options)] { return Video::exportProject(options); });
}

void ExportFlow::deliver(const YouTubeInfo& info, const std::filesystem::path& video)
{
    writeDetailsFile(info, video);
    m_notice.tell("Exported to "_L1 + text(video));
    if (m_reveal)
        m_reveal(video);
}

void ExportFlow::clearNotices()
{
    m_notice.clear();
    m_damage.clear();
}

void ExportFlow::fail(const QString& description)
{
    m_model.setAlert("Export failed: "_L1 + description);
}

void ExportFlow::cancel()
{
    m_cancel.request_stop();
}

QCoro::Task<> ExportFlow::ended()
{
    const QPointer<ExportFlow> self(this);
    while (self && m_running)
        co_await nextEmission(this, &ExportFlow::runningChanged);
}

void ExportFlow::begin()
{
    m_running = true;
    m_cancel = std::stop_source();
    *m_fraction = 0;
    clearNotices();
    m_model.setExportProgress(0);
    m_model.setBusy(u"Exporting…"_s);
    m_poll.start();
    Q_EMIT runningChanged();
}

void ExportFlow::end()
{
    m_poll.stop();
    m_running = false;
    m_model.setBusy(std::nullopt);
    m_model.setExportProgress(std::nullopt);
    Q_EMIT runningChanged();
}

void ExportFlow::showProgress()
{
    const double fraction = *m_fraction;
    m_model.setExportProgress(fraction);
    m_model.setBusy(u"Exporting… %1%"_s.arg(static_cast<int>(fraction * 100)));
}

} // namespace vantry
