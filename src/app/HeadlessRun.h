#pragma once

#include "app/CommandLine.h"
#include "app/ProgressLine.h"
#include "model/AppModel.h"

#include <QCoroTask>
#include <QObject>

namespace vantry {

/// Serves "--export": opens or records, exports, and says where the video is, all without a window. An interruption ends what runs
/// in order: a recording's clip is finished, of an export nothing stays.
class HeadlessRun : public QObject {
    Q_OBJECT

public:
    /// The model outlives the run.
    HeadlessRun(AppModel& model, CommandLine line);

    /// Ends the event loop with the program's exit status.
    void start();

    void interrupt(int signal);

private:
    QCoro::Task<> run();
    QCoro::Task<int> serve();
    QCoro::Task<> record(double wait);
    QCoro::Task<int> exportVideo();
    bool underWay() const;
    int interrupted() const;
    int failed() const;
    void sayWhereTheRecordingIs() const;

    AppModel& m_model;
    const CommandLine m_line;
    std::filesystem::path m_destination; ///< Absolute.
    ProgressLine m_progress;
    int m_signal = 0; ///< The one that interrupted the run, or 0.
};

} // namespace vantry
