#pragma once

#include "base/HostTime.h"
#include "model/Phase.h"

#include <QCoroTask>
#include <QFuture>
#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>
#include <string>

namespace vantry {

class AppModel;
class CaptureDevices;
class Recorder;
class SalvageFlow;

/// Turns the presenter's commands into clips: checks that recording is possible, counts down while the sources start, cuts
/// for a retake, keeps the live clock, and appends the finished clip to the project. Belongs to the main thread.
class RecordingFlow : public QObject {
    Q_OBJECT

public:
    /// All of them outlive the flow.
    RecordingFlow(AppModel& model, Recorder& recorder, CaptureDevices& devices, SalvageFlow& salvage);

    /// Starts a clip; with a time, the project is cut there before. Accepted in setup and editing only.
    void record(std::optional<double> cutAt);

    /// Ends a countdown as soon as the capture that is being started has started or failed. Nothing is recorded or cut then.
    void cancelStart();

    /// Ends the clip where the user asked for it, a second ago at most, and edits, with the playhead `back` seconds before the end.
    /// Accepted while recording only.
    void stop(double back, HostTime asked = HostClock::now());

    /// What one key does in turn: starts a clip, cancels its countdown, ends the clip.
    void startOrStop();

    /// Ends the clip in progress and waits until it is part of the project, also when it is being ended already.
    QCoro::Task<> finishClip(HostTime end = HostClock::now());

    /// The same at once, for a process that ends: the calling thread waits, and nobody is told.
    void rescueClip();

private:
    enum class Start { Recording, Cancelled };

    QCoro::Task<> startClip(std::optional<double> cutAt);
    QCoro::Task<Start> countDownAndBegin(std::optional<double> cutAt);
    QCoro::Task<> countDown();
    QCoro::Task<> startCapture();
    QCoro::Task<> stopAndReview(double back, HostTime end);
    QCoro::Task<std::optional<double>> endClip(HostTime end);
    QCoro::Task<std::optional<double>> completeClip();

    QCoro::Task<bool> permissionsOK();
    bool canKeepClip();
    void goBackTo(Phase phase);
    void beginClip();
    std::string unusedClipName() const;
    double keptLength() const;
    void tick();
    void listenToRecorder();
    void onStreamError(const QString& description);
    void onClipProblem(const QString& text);
    void report(const QString& failure);

    AppModel& m_model;
    Recorder& m_recorder;
    CaptureDevices& m_devices;
    SalvageFlow& m_salvage;
    QTimer m_clock;
    std::optional<std::string> m_currentFile;
    QString m_clipProblem; ///< Why it had to end, if it had to.
    std::optional<QFuture<std::optional<double>>> m_ending; ///< Of the current file.
    bool m_startCancelled = false;
    std::string m_toldRefusal; ///< Whoever records all the same knows it.
};

} // namespace vantry
