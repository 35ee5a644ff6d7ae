#include "model/DeviceChoice.h"

#include "model/Settings.h"

#include <algorithm>
#include <utility>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

const MediaDevice* find(const std::vector<MediaDevice>& devices, const QString& id)
{
    const auto found = std::ranges::find(devices, id.toStdString(), &MediaDevice::id);
    return found == devices.end() ? nullptr : &*found;
}

bool isFoundAs(const QString& id, const MediaDevice* device)
{
    return device && id.toStdString() == device->id;
}

} // namespace

void DeviceChoice::choose()
{
    const bool isFirst = !std::exchange(m_hasChosen, true);
    const auto givesWay = [isFirst](const std::vector<MediaDevice>& devices, const QString& id) {
        return isFirst ? !find(devices, id) : id.isEmpty();
    };
    const auto& [cameras, microphones, defaultMicrophone] = m_devices;
    if (find(cameras, m_settings.chosenCameraID()))
        m_settings.useCamera(m_settings.chosenCameraID());
    else if (givesWay(cameras, m_settings.cameraID()))
        m_settings.useCamera(cameras.empty() ? QString() : QString::fromStdString(cameras.front().id));
    if (find(microphones, m_settings.chosenMicID()))
        m_settings.useMic(m_settings.chosenMicID());
    else if (givesWay(microphones, m_settings.micID()))
        m_settings.useMic(QString::fromStdString(defaultMicrophone.value_or(std::string())));
}

const MediaDevice* DeviceChoice::camera() const
{
    const MediaDevice* chosen = find(m_devices.cameras, m_settings.cameraID());
    return chosen || m_devices.cameras.empty() ? chosen : &m_devices.cameras.front();
}

const MediaDevice* DeviceChoice::microphone() const
{
    const MediaDevice* chosen = find(m_devices.microphones, m_settings.micID());
    if (chosen || !m_devices.defaultMicrophone)
        return chosen;
    return find(m_devices.microphones, QString::fromStdString(*m_devices.defaultMicrophone));
}

QString DeviceChoice::wantedCamera() const
{
    return m_settings.chosenCameraID().isEmpty() ? m_settings.cameraID() : m_settings.chosenCameraID();
}

QString DeviceChoice::wantedMicrophone() const
{
    return m_settings.chosenMicID().isEmpty() ? m_settings.micID() : m_settings.chosenMicID();
}

std::optional<QString> DeviceChoice::cameraTrouble() const
{
    const MediaDevice* used = camera();
    if (wantedCamera().isEmpty() || isFoundAs(wantedCamera(), used))
        return std::nullopt;
    const QString instead = used ? QString::fromStdString(used->name) : u"no camera"_s;
    return "The chosen camera is not there: "_L1 + instead + " is recorded."_L1;
}

std::optional<QString> DeviceChoice::microphoneTrouble() const
{
    const MediaDevice* used = microphone();
    if (!used)
        return u"No microphone was found: your voice is not recorded."_s;
    if (wantedMicrophone().isEmpty() || isFoundAs(wantedMicrophone(), used))
        return std::nullopt;
    return "The chosen microphone is not there: "_L1 + QString::fromStdString(used->name) + " is recorded."_L1;
}

} // namespace vantry
