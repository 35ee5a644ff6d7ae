#pragma once

// First, or the meta-object compiler stumbles over the standard library's concepts.
#include <QObject>

#include "base/Worker.h"
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

    bool isRunning() const { return m_running; }

    /// Ends the run soon; its current clip gets no transcript.
    void cancel();

    /// Waits until no run is under way.
    QCoro::Task<> ended();

Q_SIGNALS:
    void runningChanged();

private:
    using Lines = std::optional<std::vector<Line>>;

    QCoro::Task<> transcribeNext();
    QCoro::Task<> transcribeClips();
    QFuture<Lines> linesOf(const Clip& clip, const std::string& locale, const std::shared_ptr<Transcriber>& transcriber);
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

    Worker m_worker{ "vantry.speech" };
};

} // namespace vantry
