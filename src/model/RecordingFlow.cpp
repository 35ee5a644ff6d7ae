#include "model/RecordingFlow.h"

#include "base/AppError.h"
#include "capture/ClipFolder.h"
#include "capture/Recorder.h"
#include "model/AppModel.h"
#include "model/CaptureDevices.h"
#include "model/Coroutines.h"
#include "model/Paths.h"
#include "model/PreviewFlow.h"
#include "model/SalvageFlow.h"
#include "project/Edits.h"
#include "project/Timeline.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QPointer>

#include <algorithm>
#include <chrono>

namespace vantry {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
namespace fs = std::filesystem;

namespace {

constexpr int countdownFrom = 3;
constexpr int slicesPerSecond = 10;
constexpr auto clockInterval = 250ms;
constexpr auto startFailed = "Could not start recording: "_L1;

} // namespace

RecordingFlow::RecordingFlow(AppModel& model, Recorder& recorder, CaptureDevices& devices, SalvageFlow& salvage)
    : m_model(model)
    , m_recorder(recorder)
    , m_devices(devices)
    , m_salvage(salvage)
{
    m_clock.setInterval(clockInterval);
    connect(&m_clock, &QTimer::timeout, this, &RecordingFlow::tick);
    listenToRecorder();
}

/// It speaks on threads of its own, and may still do so when the flow is gone.
void RecordingFlow::listenToRecorder()
{
    const auto onMainThread = [flow = QPointer(this)](auto handle) {
        return [flow, handle](const QString& text) {
            QMetaObject::invokeMethod(
                qApp,
                [flow, handle, text] {
                    if (flow)
                        handle(*flow, text);
                },
                Qt::QueuedConnection);
        };
    };
    m_recorder.setOnStreamError(
        onMainThread([](RecordingFlow& flow, const QString& description) { flow.onStreamError(description); }));
    m_recorder.setOnClipProblem(onMainThread([](RecordingFlow& flow, const QString& text) { flow.onClipProblem(text); }));
}

void RecordingFlow::onStreamError(const QString& description)
{
    report("Screen capture stopped: "_L1 + description);
    if (m_model.phase().isCountdown())
        cancelStart();
    stop(0);
}

void RecordingFlow::onClipProblem(const QString& text)
{
    if (m_model.phase() != Phase::recording())
        return; // It ends already.
    m_clipProblem = text;
    report("Recording stopped: "_L1 + text);
    stop(0);
}

void RecordingFlow::record(std::optional<double> cutAt)
{
    if (!m_model.isIdle())
        return;
    launch(startClip(cutAt), [flow = QPointer(this)](const QString& description) {
        if (flow)
            flow->report(startFailed + description);
    });
}

void RecordingFlow::cancelStart()
{
    m_startCancelled = true;
}

void RecordingFlow::stop(double back, HostTime asked)
{
    if (m_model.phase() != Phase::recording())
        return;
    launch(stopAndReview(back, asked), [flow = QPointer(this)](const QString& description) {
        if (flow)
            flow->report(description);
    });
}

void RecordingFlow::startOrStop()
{
    if (m_model.phase().isCountdown())
        cancelStart();
    else if (m_model.phase() == Phase::recording())
        stop(0);
    else
        record(std::nullopt);
}

QCoro::Task<> RecordingFlow::startClip(std::optional<double> cutAt)
{
    const QPointer<RecordingFlow> self(this);
    // Whoever asked twice meanwhile finds the countdown begun.
    if (!co_await permissionsOK() || !self || !m_model.isIdle())
        co_return;
    const Phase before = m_model.phase();
    if (!m_model.project() || m_model.project()->clips.empty())
        m_model.newProject();
    if (!canKeepClip())
        co_return;
    m_startCancelled = false;
    m_model.setAlert(std::nullopt); // It told of the time before.
    m_model.setPhase(Phase::countdown(countdownFrom));

    std::optional<QString> failure;
    try {
        if (co_await countDownAndBegin(cutAt) == Start::Recording)
            co_return;
    } catch (const std::exception& error) {
        failure = describe(error);
    }
    if (!self)
        co_return;
    co_await m_recorder.stopScreen();
    if (!self)
        co_return;
    goBackTo(before);
    if (failure)
        report(startFailed + *failure);
}

/// What it throws is why the clip could not be started.
QCoro::Task<RecordingFlow::Start> RecordingFlow::countDownAndBegin(std::optional<double> cutAt)
{
    const QPointer<RecordingFlow> self(this);
    // Camera, microphone and screen stream start while the presenter is counted in.
    const QCoro::Task<> capture = startCapture();
    co_await countDown();
    co_await capture;
    if (!self || m_startCancelled)
        co_return Start::Cancelled;
    // Only now is it certain that there will be something in the place of what is cut off.
    if (cutAt)
        m_model.edit(Rebuild::No, [&](Project& project) { cut(project, *cutAt); });
    beginClip();
    co_return Start::Recording;
}

QCoro::Task<> RecordingFlow::countDown()
{
    const QPointer<RecordingFlow> self(this);
    HostTime slice = HostClock::now();
    for (int secondsLeft = countdownFrom; secondsLeft > 0; --secondsLeft) {
        m_model.setPhase(Phase::countdown(secondsLeft));
        for (int i = 0; i < slicesPerSecond && !m_startCancelled; ++i) {
            slice += 1000ms / slicesPerSecond;
            co_await sleepUntil(slice);
            if (!self)
                co_return;
        }
    }
}

QCoro::Task<> RecordingFlow::startCapture()
{
    const QPointer<RecordingFlow> self(this);
    m_devices.startCamera();
    const std::optional<Display> display = m_devices.chosenDisplay();
    if (!display)
        throw AppError("No display found");
    m_recorder.setCaptureSystemAudio(m_model.settings()->systemAudio());
    co_await m_recorder.startScreen(*display);
    if (self)
        co_await m_recorder.session().settled();
}

/// Whether what is chosen can be recorded. Says why not.
QCoro::Task<bool> RecordingFlow::permissionsOK()
{
    const QPointer<RecordingFlow> self(this);
    co_await m_devices.listDevices();
    if (!self)
        co_return false;
    const std::string refusal = m_recorder.session().refusal();
    if (refusal != std::exchange(m_toldRefusal, refusal) && !refusal.empty()) {
        report(QString::fromStdString(refusal) + u" Press Record again to record without it."_s);
        co_return false;
    }
    try {
        m_devices.chosenDisplay();
        co_return true;
    } catch (const std::exception& error) {
        report(startFailed + describe(error));
        co_return false;
    }
}

/// Whether a clip can be put into the project's folder. Says why not, before anybody is counted in.
bool RecordingFlow::canKeepClip()
{
    try {
        checkClipFolder(*m_model.folder());
        return true;
    } catch (const std::exception& error) {
        goBackTo(m_model.phase());
        report(startFailed + describe(error));
        return false;
    }
}

/// What has no clips is given up, and then there is nothing to edit.
void RecordingFlow::goBackTo(Phase phase)
{
    if (m_model.project() && m_model.project()->clips.empty()) {
        m_model.dropEmptyProject();
        m_model.preview()->clear();
        phase = Phase::setup();
    }
    m_model.setPhase(phase);
    // In setup it is what the preview shows.
    if (phase == Phase::setup())
        m_devices.startCamera();
    else
        m_devices.stopCamera();
}

void RecordingFlow::beginClip()
{
    const std::string name = unusedClipName();
    m_recorder.beginClip(*m_model.folder() / name);
    m_currentFile = name;
    m_ending.reset();
    m_clipProblem.clear();
    tick();
    m_model.setPhase(Phase::recording());
    m_clock.start();
}

/// "clip-" and the time in whole seconds. A clock that was set back does not make a clip overwrite an older one.
std::string RecordingFlow::unusedClipName() const
{
    const auto now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    const std::string stem = "clip-" + std::to_string(now.time_since_epoch().count());
    std::string name = stem + ".mov";
    std::error_code error;
    for (int suffix = 2; fs::exists(*m_model.folder() / name, error); ++suffix)
        name = stem + "-" + std::to_string(suffix) + ".mov";
    return name;
}

QCoro::Task<> RecordingFlow::finishClip(HostTime end)
{
    const QPointer<RecordingFlow> self(this);
    while (self && m_model.phase() == Phase::saving())
        co_await nextEmission(&m_model, &AppModel::phaseChanged);
    if (!self || m_model.phase() != Phase::recording())
        co_return;
    m_model.setPhase(Phase::saving());
    m_clock.stop();
    std::optional<double> duration = co_await endClip(end);
    if (self && !duration)
        duration = co_await completeClip();
    if (!self)
        co_return;
    if (duration)
        m_model.addClip(Rebuild::No, *m_currentFile, *duration);
    m_currentFile.reset();
    co_await m_recorder.stopScreen();
    if (self)
        m_devices.stopCamera();
}

void RecordingFlow::rescueClip()
{
    if (!m_currentFile)
        return;
    const QSignalBlocker quiet(m_model);
    // A clip that is being ended already comes out of here as well.
    const std::optional<double> duration = m_ending ? m_ending->result() : m_recorder.endClip().result();
    if (duration)
        m_model.addClip(Rebuild::No, *m_currentFile, *duration).waitForFinished();
    m_currentFile.reset();
}

/// The clip's length; nothing when its file could not be completed.
QCoro::Task<std::optional<double>> RecordingFlow::endClip(HostTime end)
{
    try {
        m_ending = m_recorder.endClip(end);
        tick();
        co_return co_await *m_ending;
    } catch (const std::exception& error) {
        co_return std::nullopt;
    }
}

/// The length of a clip whose file could not be completed, when what is on the disk can be. Says so when it cannot.
QCoro::Task<std::optional<double>> RecordingFlow::completeClip()
{
    const QPointer<RecordingFlow> self(this);
    QString why = m_clipProblem;
    try {
        if (const auto length = co_await m_salvage.complete(*m_model.folder() / *m_currentFile))
            co_return length;
    } catch (const std::exception& error) {
        why = describe(error) + ". What was recorded stays where it is, and is completed as soon as that can be done."_L1;
    }
    if (self)
        report(QString(u"The last clip could not be saved. "_s + why).trimmed());
    co_return std::nullopt;
}

QCoro::Task<> RecordingFlow::stopAndReview(double back, HostTime end)
{
    const QPointer<RecordingFlow> self(this);
    co_await finishClip(end);
    if (!self)
        co_return;
    m_model.setPendingSeek(std::max(keptLength() - back, 0.0));
    m_model.setPhase(Phase::editing());
    m_model.countRevisionUp();
    m_model.transcribeMissing();
}

double RecordingFlow::keptLength() const
{
    return m_model.project() ? totalLength(*m_model.project()) : 0;
}

void RecordingFlow::tick()
{
    m_model.setLiveTime(keptLength() + m_recorder.elapsed());
}

/// A key in another program may have asked for what failed.
void RecordingFlow::report(const QString& failure)
{
    m_model.setAlert(failure);
    Q_EMIT m_model.attentionWanted();
}

} // namespace vantry
