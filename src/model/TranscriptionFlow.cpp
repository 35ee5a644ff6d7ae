#include "model/TranscriptionFlow.h"

#include "base/Background.h"
#include "model/AppModel.h"
#include "model/Coroutines.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

const QString transcribing = u"Transcribing…"_s;
constexpr auto failed = "Transcription failed: "_L1;

} // namespace

TranscriptionFlow::TranscriptionFlow(AppModel& model, Transcriber::Options options)
    : m_model(model)
    , m_options(std::move(options))
    , m_notice(model.notices())
{
    connect(&m_model, &AppModel::folderChanged, this, [this] {
        if (m_running && m_model.folder() != m_folder)
            cancel();
    });
}

TranscriptionFlow::~TranscriptionFlow()
{
    cancel();
}

void TranscriptionFlow::transcribeMissing()
{
    launch(transcribeNext(), [self = QPointer(this)](const QString& description) {
        if (self)
            self->m_notice.warn(failed + description);
    });
}

QCoro::Task<> TranscriptionFlow::transcribeNext()
{
    const QPointer<TranscriptionFlow> self(this);
    co_await ended();
    if (self)
        co_await transcribeAll();
}

QCoro::Task<> TranscriptionFlow::transcribeAll()
{
    if (m_running) {
        co_await ended();
        co_return;
    }
    if (!m_model.folder())
        co_return;
    const QPointer<TranscriptionFlow> self(this);
    begin();
    std::optional<QString> failure;
    try {
        co_await transcribeClips();
    } catch (const std::exception& error) {
        failure = failed + describe(error);
    }
    if (self)
        end(m_cancel.stop_requested() ? std::nullopt : failure);
}

/// Until one fails, or the run is cancelled.
QCoro::Task<> TranscriptionFlow::transcribeClips()
{
    const QPointer<TranscriptionFlow> self(this);
    const auto transcriber = makeTranscriber();
    const QString chosen = m_model.settings()->speechLocale();
    const std::string locale = chosen.isEmpty() ? "en-US" : chosen.toStdString();
    const std::vector<Clip> clips = m_model.project() ? m_model.project()->clips : std::vector<Clip>();
    for (const Clip& clip : clips) {
        if (clip.transcript)
            continue;
        m_notice.tell(transcribing);
        const Lines lines = co_await linesOf(clip, locale, transcriber);
        if (!self || !lines || m_model.folder() != m_folder)
            co_return;
        store(clip, *lines);
    }
}

/// On the worker.
QFuture<TranscriptionFlow::Lines> TranscriptionFlow::linesOf(
    const Clip& clip, const std::string& locale, const std::shared_ptr<Transcriber>& transcriber)
{
    return inBackground(m_worker, [transcriber, movie = *m_folder / clip.file, locale, cancel = m_cancel.get_token()] {
        return transcriber->transcribe(movie, locale, cancel);
    });
}

std::shared_ptr<Transcriber> TranscriptionFlow::makeTranscriber()
{
    Transcriber::Options options = m_options;
    if (!options.model)
        options.model = speechModel(m_model.settings()->speechModel());
    return std::make_shared<Transcriber>(std::move(options), showFetching());
}

/// To be called from any thread.
Transcriber::OnFetching TranscriptionFlow::showFetching()
{
    return [self = QPointer(this), run = m_run](std::optional<double> fraction) {
        const QString text =
            fraction ? u"Downloading the speech model… %1%"_s.arg(static_cast<int>(100 * *fraction)) : transcribing;
        QMetaObject::invokeMethod(
            qApp,
            [self, run, text] {
                if (self && self->m_running && self->m_run == run)
                    self->m_notice.tell(text);
            },
            Qt::QueuedConnection);
    };
}

/// A clip that was removed meanwhile stays away.
void TranscriptionFlow::store(const Clip& clip, const std::vector<Line>& lines)
{
    m_model.edit(Rebuild::No, [&](Project& project) {
        const auto found = std::ranges::find(project.clips, clip.id, &Clip::id);
        if (found != project.clips.end())
            found->transcript = lines;
    });
}

void TranscriptionFlow::cancel()
{
    m_cancel.request_stop();
}

QCoro::Task<> TranscriptionFlow::ended()
{
    const QPointer<TranscriptionFlow> self(this);
    while (self && m_running)
        co_await nextEmission(this, &TranscriptionFlow::runningChanged);
}

void TranscriptionFlow::begin()
{
    m_running = true;
    ++m_run;
    m_folder = m_model.folder();
    m_cancel = std::stop_source();
    Q_EMIT runningChanged();
}

void TranscriptionFlow::end(const std::optional<QString>& failure)
{
    if (failure)
        m_notice.warn(*failure);
    else
        m_notice.clear();
    m_running = false;
    Q_EMIT runningChanged();
}

} // namespace vantry
