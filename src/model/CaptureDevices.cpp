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

const MediaDevice* find(const std::vector<MediaDevice>& devices, const std::string& id)
{
    const auto found = std::ranges::find(devices, id, &MediaDevice::id);
    return found == devices.end() ? nullptr : &*found;
}

bool contains(const std::vector<MediaDevice>& devices, const QString& id)
{
    return find(devices, id.toStdString()) != nullptr;
}

} // namespace

CaptureDevices::CaptureDevices(AppModel& model, Recorder& recorder)
    : m_model(model)
    , m_recorder(recorder)
    , m_mirror(recorder.session().preview())
    , m_sourceNotices(model, recorder)
    , m_microphoneNotice(model.notices())
{
    m_meter.setInterval(meterInterval);
    connect(&m_meter, &QTimer::timeout, this, &CaptureDevices::measure);
    connect(&m_model, &AppModel::phaseChanged, this, &CaptureDevices::tellOfMicrophone);
    connect(m_model.settings(), &Settings::cameraIDChanged, this, &CaptureDevices::reconfigure);
    connect(m_model.settings(), &Settings::micIDChanged, this, &CaptureDevices::reconfigure);
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
    const bool isFirst = !std::exchange(m_isListed, true);
    const MediaDeviceList before = std::exchange(m_devices, devices);
    if (before.cameras != devices.cameras)
        Q_EMIT camerasChanged();
    if (before.microphones != devices.microphones)
        Q_EMIT micsChanged();
    // Later a choice that is not there is kept: what was unplugged comes back.
    Settings& settings = *m_model.settings();
    if (isFirst ? !contains(devices.cameras, settings.cameraID()) : settings.cameraID().isEmpty())
        settings.setCameraID(devices.cameras.empty() ? QString() : QString::fromStdString(devices.cameras.front().id));
    if (isFirst && !settings.micID().isEmpty())
        m_microphoneNotice.warn(microphoneTrouble().value_or(QString()));
    if (isFirst ? !contains(devices.microphones, settings.micID()) : settings.micID().isEmpty())
        settings.setMicID(QString::fromStdString(devices.defaultMicrophone.value_or(std::string())));
    reconfigure();
    if (m_model.phase().isCountdown())
        tellOfMicrophone();
}

/// While a clip is recorded it stays as it was when that began, and so does what is said of it.
void CaptureDevices::tellOfMicrophone()
{
    if (m_model.phase().isCountdown())
        m_microphoneNotice.warn(microphoneTrouble().value_or(QString()));
    else if (m_model.isIdle())
        m_microphoneNotice.clear();
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
    std::optional<std::string> camera;
    if (contains(m_devices.cameras, m_model.settings()->cameraID()))
        camera = m_model.settings()->cameraID().toStdString();
    else if (!m_devices.cameras.empty())
        camera = m_devices.cameras.front().id;
    const MediaDevice* mic = microphone();
    m_recorder.session().configure(camera, mic ? std::optional(mic->id) : std::nullopt);
}

/// The chosen one, else the system's own.
const MediaDevice* CaptureDevices::microphone() const
{
    const MediaDevice* chosen = find(m_devices.microphones, m_model.settings()->micID().toStdString());
    return chosen || !m_devices.defaultMicrophone ? chosen : find(m_devices.microphones, *m_devices.defaultMicrophone);
}

std::optional<QString> CaptureDevices::microphoneTrouble() const
{
    const MediaDevice* mic = microphone();
    if (!mic)
        return u"No microphone was found: your voice is not recorded."_s;
    const QString chosen = m_model.settings()->micID();
    if (chosen.isEmpty() || chosen.toStdString() == mic->id)
        return std::nullopt;
    return "The chosen microphone is not there: "_L1 + QString::fromStdString(mic->name) + " is recorded."_L1;
}

/// A clip keeps the devices that it was begun with: one that vanishes leaves a gap until it is back.
void CaptureDevices::reconfigure()
{
    if (m_isRunning && (m_model.isIdle() || m_model.phase().isCountdown()))
        configure();
}

void CaptureDevices::measure()
{
    const double level = std::clamp((m_recorder.session().micPower() - quietest) / -quietest, 0.0, 1.0);
    if (std::abs(level - m_micLevel) <= smallestStep)
        return;
    m_micLevel = level;
    Q_EMIT micLevelChanged();
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
