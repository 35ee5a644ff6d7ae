#pragma once

#include "model/CameraMirror.h"
#include "model/DeviceChoice.h"
#include "model/Notices.h"
#include "model/SourceNotices.h"
#include "model/VoiceWatch.h"
#include "platform/Displays.h"
#include "platform/MediaDevices.h"

#include <QCoroTask>
#include <QFuture>
#include <QObject>
#include <QTimer>
#include <QVariantList>

#include <optional>
#include <vector>

namespace vantry {

class AppModel;
class Recorder;

/// What can be recorded from: displays, cameras and microphones, which of them the settings choose, and what camera and microphone
/// give right now. Belongs to the main thread.
class CaptureDevices : public QObject {
    Q_OBJECT
    Q_PROPERTY(QVariantList cameras READ camerasForViews NOTIFY camerasChanged)
    Q_PROPERTY(QVariantList mics READ micsForViews NOTIFY micsChanged)
    Q_PROPERTY(double micLevel READ micLevel NOTIFY micLevelChanged)
    Q_PROPERTY(QString silence READ silence NOTIFY silenceChanged)
    Q_PROPERTY(vantry::CameraMirror* mirror READ mirror CONSTANT)

public:
    /// Both outlive the devices.
    CaptureDevices(AppModel& model, Recorder& recorder);

    const std::vector<Display>& displays() const { return m_displays; }
    const std::vector<MediaDevice>& cameras() const { return m_devices.cameras; }
    const std::vector<MediaDevice>& mics() const { return m_devices.microphones; }

    /// How loud the microphone is, from 0 to 1: the last 60 dB below full scale.
    double micLevel() const { return m_micLevel; }
    CameraMirror* mirror() { return &m_mirror; }

    /// Says so when nothing has been heard from the microphone for a while, by its name; else empty. While a clip is counted in or
    /// recorded the status says it too.
    QString silence() const { return m_silence; }

    /// The chosen display as it is now, else the first. Nothing where there is none. Throws AppError when nobody knows the
    /// displays.
    std::optional<Display> chosenDisplay() const;

    /// Finds the displays, and chooses the first where the chosen one is not among them. Without any the list stays empty.
    void listDisplays();

    /// Finds cameras and microphones, and chooses others where the chosen ones are not among them. From then on the lists follow
    /// what comes and goes, and so does the choice while nothing is recorded. Done when they are known, or when there is no media
    /// server, which the status tells.
    QCoro::Task<> listDevices();

    /// Opens the chosen camera and microphone, else the first and the system's own, now and whenever the choice changes.
    void startCamera();
    void stopCamera();

    /// Keeps `micLevel` up to date.
    void startMeter() { m_meter.start(); }

Q_SIGNALS:
    void displaysChanged();
    void camerasChanged();
    void micsChanged();
    void micLevelChanged();
    void silenceChanged();

private:
    QVariantList camerasForViews() const;
    QVariantList micsForViews() const;
    void take(const MediaDeviceList& devices);
    bool isRecording() const;
    void follow();
    void configure();
    void reconfigure();
    void tell();
    void measure();
    void listen(double level);
    void setSilence(const QString& text);

    AppModel& m_model;
    Recorder& m_recorder;
    CameraMirror m_mirror;
    SourceNotices m_sourceNotices;
    Notice m_cameraNotice;
    Notice m_microphoneNotice;
    Notice m_silenceNotice;
    VoiceWatch m_voice;
    QString m_silence;
    QString m_heardMicrophone; ///< Whose voice is waited for.
    QTimer m_meter;
    std::vector<Display> m_displays;
    MediaDeviceList m_devices;
    DeviceChoice m_choice;
    double m_micLevel = 0;
    std::optional<QFuture<bool>> m_listing; ///< Whether there is a media server.
    bool m_isListed = false;
    bool m_isRunning = false;
};

} // namespace vantry
