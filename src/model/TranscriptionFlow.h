#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "base/Worker.h"
#include "model/LesserTranscripts.h"
#include "model/Notices.h"
#include "project/Project.h"
#include "transcribe/Transcriber.h"

#include <QCoroTask>
#include <QFuture>
#include <QString>

#include <filesystem>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace vantry {

class AppModel;

/// Gives the open project's clips their transcripts, one clip after the other, with a word about it in the model's status. Belongs
/// to the main thread; the work is done on a thread of its own. A run whose project is not open any more is cancelled. Destroying
/// the flow cancels as well.
class TranscriptionFlow : public QObject {
    Q_OBJECT

public:
    /// The model outlives the flow. The settings say which of the speech models `options` take.
    TranscriptionFlow(AppModel& model, Transcriber::Options options);
    ~TranscriptionFlow() override;

    /// Transcribes every clip that has no transcript. While a run is under way it waits for that one's end and does nothing else.
    /// What goes wrong stands in the status.
    QCoro::Task<> transcribeAll();

    /// Starts the same and returns at once. A run that is under way comes first: it may be another project's, or have begun before
    /// there were all of the clips.
    void transcribeMissing();

    /// Transcribes all clips of the open project again, with the engine that there is now. One that fails keeps what it has.
    void transcribeAgain();

    bool isRunning() const { return m_running; }

    /// Ends the run soon; its current clip gets no transcript.
    void cancel();

    /// Waits until no run is under way.
    QCoro::Task<> ended();

Q_SIGNALS:
    void runningChanged();

private:
    using Lines = std::optional<std::vector<Line>>;

    /// Which clips a run takes.
    enum class Clips { Missing, All };

    void start(Clips which);
    QCoro::Task<> transcribeNext(Clips which);
    QCoro::Task<> transcribe(Clips which);
    QCoro::Task<> transcribeClips(Clips which);
    QCoro::Task<bool> transcribeClip(Clip clip);
    QFuture<Lines> linesOf(const Clip& clip);
    QFuture<LesserTranscripts> readLesser();
    void noteEngine(const Clip& clip, const std::vector<Line>& lines);
    std::shared_ptr<Transcriber> makeTranscriber();
    Transcriber::OnFetching showFetching();
    void store(const Clip& clip, const std::vector<Line>& lines);
    void begin();
    void end(const std::optional<QString>& failure);

    AppModel& m_model;
    const Transcriber::Options m_options;
    Notice m_notice;
    bool m_running = false;

    // Of the run, or the last one.
    int m_run = 0; ///< Its number.
    std::optional<std::filesystem::path> m_folder;
    std::stop_source m_cancel;
    std::shared_ptr<Transcriber> m_transcriber; ///< At work on the worker; between clips it is looked at here.
    std::string m_locale;
    LesserTranscripts m_lesser;
    QString m_shortfall; ///< Why a lesser engine had to do.

    Worker m_worker{ "vantry.speech" };
};

} // namespace vantry
