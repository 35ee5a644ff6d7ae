#include "model/CaptureDevices.h"

#include "base/Log.h"
#include "capture/Recorder.h"
#include "model/AppModel.h"
#include "model/ChangeTo.h"
#include "model/Coroutines.h"

#include <QCoreApplication>
#include <QCoroFuture>
#include <QPointer>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace vantry {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto meterInterval = 100ms;
constexpr double quietest = -60; ///< dBFS
constexpr double smallestStep = 0.01; ///< What a meter can show.

QVariantList forViews(const std::vector<MediaDevice>& devices)
{
    QVariantList list;
    for (const MediaDevice& device : devices)
        list.append(
            QVariantMap{ { u"id"_s, QString::fromStdString(device.id) }, { u"name"_s, QString::fromStdString(device.name) } });
    return list;
}

} // namespace

CaptureDevices::CaptureDevices(AppModel& model, Recorder& recorder)
    : m_model(model)
    , m_recorder(recorder)
    , m_mirror(recorder.session().preview())
    , m_sourceNotices(model, recorder)
    , m_cameraNotice(model.notices())
    , m_microphoneNotice(model.notices())
    , m_silenceNotice(model.notices())
    , m_choice(*model.settings())
{
    m_meter.setInterval(meterInterval);
    connect(&m_meter, &QTimer::timeout, this, &CaptureDevices::measure);
    connect(&m_model, &AppModel::phaseChanged, this, &CaptureDevices::follow);
    for (const auto change : { &Settings::cameraIDChanged, &Settings::micIDChanged, &Settings::chosenDevicesChanged })
        connect(m_model.settings(), change, this, &CaptureDevices::reconfigure);
}

std::optional<Display> CaptureDevices::chosenDisplay() const
{
    const std::vector<Display> found = vantry::displays();
    const auto chosen = std::ranges::find(found, m_model.settings()->displayID(), &Display::id);
    return found.empty() ? std::nullopt : std::optional(chosen == found.end() ? found.front() : *chosen);
}

void CaptureDevices::listDisplays()
{
    try {
        m_displays = vantry::displays();
        Q_EMIT displaysChanged();
    } catch (const std::exception& error) {
        qCInfo(logModel) << "no displays:" << error.what();
        return;
    }
    const auto chosen = std::ranges::find(m_displays, m_model.settings()->displayID(), &Display::id);
    if (chosen == m_displays.end() && !m_displays.empty())
        m_model.settings()->setDisplayID(m_displays.front().id);
}

QCoro::Task<> CaptureDevices::listDevices()
{
    if (!m_listing) {
        m_listing = m_recorder.session().setOnDevices([devices = QPointer(this)](const MediaDeviceList& list) {
            QMetaObject::invokeMethod(
                qApp,
                [devices, list] {
                    if (devices)
                        devices->take(list);
                },
                Qt::QueuedConnection);
        });
    }
    const QPointer<CaptureDevices> self(this);
    const bool isServed = co_await *m_listing;
    if (self && isServed)
        take(m_recorder.session().devices());
}

void CaptureDevices::take(const MediaDeviceList& devices)
{
    m_isListed = true;
    const MediaDeviceList before = std::exchange(m_devices, devices);
    if (before.cameras != devices.cameras)
        Q_EMIT camerasChanged();
    if (before.microphones != devices.microphones)
        Q_EMIT micsChanged();
    m_choice.setDevices(devices);
    follow();
}

/// A clip keeps the devices that it was begun with: one that vanishes leaves a gap until it is back.
bool CaptureDevices::isRecording() const
{
    return m_model.phase() == Phase::recording() || m_model.phase() == Phase::saving();
}

/// What came or went meanwhile counts when the clip has ended.
void CaptureDevices::follow()
{
    if (m_isListed && !isRecording())
        m_choice.choose();
    reconfigure();
}

void CaptureDevices::startCamera()
{
    m_isRunning = true;
    if (m_isListed)
        configure();
    else
        launch(listDevices(), [](const QString& description) { qCWarning(logModel) << "no devices:" << description; });
    m_recorder.session().startCamera();
}

void CaptureDevices::stopCamera()
{
    m_isRunning = false;
    m_recorder.session().stopCamera();
}

void CaptureDevices::configure()
{
    const auto idOf = [](const MediaDevice* device) { return device ? std::optional(device->id) : std::nullopt; };
    m_recorder.session().configure(idOf(m_choice.camera()), idOf(m_choice.microphone()));
}

void CaptureDevices::reconfigure()
{
    if (isRecording())
        return;
    if (m_isRunning)
        configure();
    tell();
}

/// Who edits needs no devices.
void CaptureDevices::tell()
{
    const bool isCountdown = m_model.phase().isCountdown();
    const bool isOfInterest = isCountdown || (m_model.phase() == Phase::setup() && m_isListed);
    const auto camera = isOfInterest ? m_choice.cameraTrouble() : std::nullopt;
    const bool isMicrophoneOfInterest = isCountdown || (isOfInterest && m_choice.isMicrophoneExpected());
    const auto microphone = isMicrophoneOfInterest ? m_choice.microphoneTrouble() : std::nullopt;
    m_cameraNotice.warn(camera.value_or(QString()));
    m_microphoneNotice.warn(microphone.value_or(QString()));
}

void CaptureDevices::measure()
{
    const double level = std::clamp((m_recorder.session().micPower() - quietest) / -quietest, 0.0, 1.0);
    listen(level);
    if (std::abs(level - m_micLevel) <= smallestStep)
        return;
    m_micLevel = level;
    Q_EMIT micLevelChanged();
}

/// Who edits, or has another trouble with the microphone, is told nothing of it.
void CaptureDevices::listen(double level)
{
    const HostTime now = HostClock::now();
    const MediaDevice* microphone = m_choice.microphone();
    const bool isHeard =
        m_isRunning && microphone && m_model.phase() != Phase::editing() && !m_sourceNotices.has(CaptureSource::Microphone);
    const QString id = isHeard ? QString::fromStdString(microphone->id) : QString();
    if (!isHeard || changeTo(m_heardMicrophone, id))
        m_voice.start(now);
    m_voice.hear(level, now);
    setSilence(m_voice.isSilent(now) ? tr("Nothing is heard from %1. Is it muted?").arg(QString::fromStdString(microphone->name))
                                     : QString());
}

void CaptureDevices::setSilence(const QString& text)
{
    const bool isUnderWay = m_model.phase().isCountdown() || m_model.phase() == Phase::recording();
    m_silenceNotice.warn(isUnderWay ? text : QString());
    if (changeTo(m_silence, text))
        Q_EMIT silenceChanged();
}

QVariantList CaptureDevices::camerasForViews() const
{
    return forViews(m_devices.cameras);
}

QVariantList CaptureDevices::micsForViews() const
{
    return forViews(m_devices.microphones);
}

} // namespace vantry
