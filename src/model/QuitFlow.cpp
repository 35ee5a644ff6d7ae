#include "model/QuitFlow.h"

#include "model/AppModel.h"
#include "model/ChangeTo.h"
#include "model/Coroutines.h"
#include "model/ExportFlow.h"
#include "model/ProjectSaver.h"
#include "model/RecordingFlow.h"
#include "model/SalvageFlow.h"
#include "model/TranscriptionFlow.h"

#include <QCoroFuture>
#include <QPointer>

namespace vantry {

using namespace Qt::StringLiterals;

QuitFlow::QuitFlow(AppModel& model, ProjectSaver& saver, SalvageFlow& salvage)
    : m_model(model)
    , m_saver(saver)
    , m_salvage(salvage)
{
}

void QuitFlow::start()
{
    setProblem({});
    launch(finish(), [self = QPointer(this)](const QString& description) {
        if (self)
            self->setProblem(description);
    });
}

void QuitFlow::quitAllTheSame()
{
    Q_EMIT m_model.readyToQuit();
}

QCoro::Task<> QuitFlow::finish()
{
    const QPointer<QuitFlow> self(this);
    m_model.exporting().cancel();
    m_model.transcription().cancel();
    co_await m_model.exporting().ended();
    if (self)
        co_await m_model.transcription().ended();
    if (self)
        m_model.cancelStart();
    while (self && m_model.phase().isCountdown())
        co_await nextEmission(&m_model, &AppModel::phaseChanged);
    if (!self)
        co_return;
    m_model.setAlert(std::nullopt); // What stands there was said before.
    co_await m_model.recording().finishClip();
    if (!self)
        co_return;
    // Nobody sees an alert any more.
    const QString lost = m_model.alert().value_or(QString());
    const QString unsaved = co_await problemOfSaving();
    if (!self)
        co_return;
    const QString problem = unsaved.isEmpty() ? lost : unsaved;
    if (problem.isEmpty()) {
        Q_EMIT m_model.readyToQuit();
        co_return;
    }
    if (m_model.phase() == Phase::saving())
        m_model.setPhase(Phase::editing());
    m_model.setAlert(std::nullopt); // It says the same.
    setProblem(problem);
    Q_EMIT m_model.attentionWanted();
}

/// Tries what is not on the disk once more, and says what still is not.
QCoro::Task<QString> QuitFlow::problemOfSaving()
{
    const QPointer<QuitFlow> self(this);
    QString problem;
    if (m_salvage.isUnfinished()) {
        m_model.setPhase(Phase::editing()); // What was cut off is put into projects only while nothing is recorded.
        if (!co_await m_salvage.retry() && self)
            problem = u"The last clip could not be saved. It is completed when Vantry is started again and can write it. "_s;
    }
    if (self && !co_await m_saver.flush() && self)
        problem += "Could not save the project: "_L1 + m_saver.problem();
    co_return problem.trimmed();
}

void QuitFlow::setProblem(const QString& text)
{
    if (changeTo(m_problem, text))
        Q_EMIT problemChanged();
}

} // namespace vantry
