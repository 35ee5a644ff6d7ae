#include "model/TranscriptionFlow.h"

#include "base/Background.h"
#include "base/Log.h"
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
    start(Clips::Missing);
}

void TranscriptionFlow::transcribeAgain()
{
    start(Clips::All);
}

void TranscriptionFlow::start(Clips which)
{
    launch(transcribeNext(which), [self = QPointer(this)](const QString& description) {
        if (self)
            self->m_notice.warn(failed + description);
    });
}

QCoro::Task<> TranscriptionFlow::transcribeNext(Clips which)
{
    const QPointer<TranscriptionFlow> self(this);
    co_await ended();
    if (self)
        co_await transcribe(which);
}

QCoro::Task<> TranscriptionFlow::transcribeAll()
{
    return transcribe(Clips::Missing);
}

QCoro::Task<> TranscriptionFlow::transcribe(Clips which)
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
        co_await transcribeClips(which);
    } catch (const std::exception& error) {
        failure = failed + describe(error);
    }
    if (self)
        end(m_cancel.stop_requested() ? std::nullopt : failure);
}

/// Until one fails, or the run is cancelled. What a lesser engine heard is heard again once the wanted one is here.
QCoro::Task<> TranscriptionFlow::transcribeClips(Clips which)
{
    const QPointer<TranscriptionFlow> self(this);
    const LesserTranscripts lesser = co_await readLesser();
    if (!self || m_model.folder() != m_folder)
        co_return;
    m_lesser = lesser;
    const std::vector<Clip> clips = m_model.project() ? m_model.project()->clips : std::vector<Clip>();
    for (const Clip& clip : clips) {
        if ((which == Clips::All || !clip.transcript) && !co_await transcribeClip(clip))
            co_return;
    }
    for (const Clip& clip : clips) {
        if (which == Clips::Missing && m_lesser.contains(clip) && m_transcriber->hasWantedEngine(m_locale)
            && !co_await transcribeClip(clip))
            co_return;
    }
}

/// False when nobody wants the rest.
QCoro::Task<bool> TranscriptionFlow::transcribeClip(Clip clip)
{
    const QPointer<TranscriptionFlow> self(this);
    m_notice.tell(transcribing);
    const Lines lines = co_await linesOf(clip);
    if (!self || !lines || m_model.folder() != m_folder)
        co_return false;
    store(clip, *lines);
    noteEngine(clip, *lines);
    co_return true;
}

/// On the worker.
QFuture<TranscriptionFlow::Lines> TranscriptionFlow::linesOf(const Clip& clip)
{
    return inBackground(
        m_worker, [transcriber = m_transcriber, movie = *m_folder / clip.file, locale = m_locale, cancel = m_cancel.get_token()] {
            return transcriber->transcribe(movie, locale, cancel);
        });
}

QFuture<LesserTranscripts> TranscriptionFlow::readLesser()
{
    return inBackground(m_worker, [folder = *m_folder] { return LesserTranscripts::read(folder); });
}

/// So that the lines can be made again when the wanted engine is here.
void TranscriptionFlow::noteEngine(const Clip& clip, const std::vector<Line>& lines)
{
    const LesserTranscripts before = m_lesser;
    m_lesser.remove(clip);
    if (!m_transcriber->shortfall().empty()) {
        m_shortfall = QString::fromStdString(m_transcriber->shortfall());
        m_lesser.add(clip, lines);
    }
    if (m_lesser == before)
        return;
    m_worker.post([lesser = m_lesser, folder = *m_folder] {
        try {
            lesser.write(folder);
        } catch (const std::exception& error) {
            qCWarning(logModel, "%s", error.what()); // Nothing is lost but a second attempt.
        }
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
    m_transcriber = makeTranscriber();
    const QString locale = m_model.settings()->speechLocale();
    m_locale = locale.isEmpty() ? "en-US" : locale.toStdString();
    m_shortfall.clear();
    Q_EMIT runningChanged();
}

void TranscriptionFlow::end(const std::optional<QString>& failure)
{
    if (failure)
        m_notice.warn(*failure);
    else
        m_notice.warn(m_shortfall.isEmpty() ? m_shortfall : "Transcribed less well than it could be. "_L1 + m_shortfall);
    m_running = false;
    Q_EMIT runningChanged();
}

} // namespace vantry
