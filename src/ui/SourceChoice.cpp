#include "ui/SourceChoice.h"

#include "model/ChangeTo.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace vantry {

using namespace Qt::StringLiterals;

namespace {

QStringList namesOf(const std::vector<MediaDevice>& devices)
{
    QStringList names;
    for (const MediaDevice& device : devices)
        names.append(QString::fromStdString(device.name));
    return names;
}

int indexOf(const QString& id, const std::vector<MediaDevice>& devices)
{
    const auto found = std::ranges::find(devices, id.toStdString(), &MediaDevice::id);
    return found == devices.end() ? -1 : static_cast<int>(found - devices.begin());
}

template <typename List>
bool isWithin(int index, const List& list)
{
    return index >= 0 && index < std::ssize(list);
}

} // namespace

void SourceChoice::setModel(AppModel* model)
{
    if (!changeTo(m_model, model))
        return;
    connect(model->devices(), &CaptureDevices::displaysChanged, this, &SourceChoice::screensChanged);
    connect(model->devices(), &CaptureDevices::camerasChanged, this, &SourceChoice::camerasChanged);
    connect(model->devices(), &CaptureDevices::micsChanged, this, &SourceChoice::microphonesChanged);
    connect(model->settings(), &Settings::displayIDChanged, this, &SourceChoice::screensChanged);
    connect(model->settings(), &Settings::cameraIDChanged, this, &SourceChoice::camerasChanged);
    connect(model->settings(), &Settings::micIDChanged, this, &SourceChoice::microphonesChanged);
    for (const auto change : { &QGuiApplication::screenAdded, &QGuiApplication::screenRemoved })
        connect(qGuiApp, change, model->devices(), &CaptureDevices::listDisplays);
    Q_EMIT modelChanged();
    Q_EMIT screensChanged();
    Q_EMIT camerasChanged();
    Q_EMIT microphonesChanged();
}

// Views may ask before they have set the model.
const std::vector<Display>& SourceChoice::displays() const
{
    static const std::vector<Display> none;
    return m_model ? m_model->devices()->displays() : none;
}

const std::vector<MediaDevice>& SourceChoice::cameraDevices() const
{
    static const std::vector<MediaDevice> none;
    return m_model ? m_model->devices()->cameras() : none;
}

const std::vector<MediaDevice>& SourceChoice::microphoneDevices() const
{
    static const std::vector<MediaDevice> none;
    return m_model ? m_model->devices()->mics() : none;
}

QStringList SourceChoice::screens() const
{
    QStringList names;
    for (const Display& display : displays())
        names.append(u"%1 — %2×%3"_s.arg(display.name.empty() ? tr("Display") : QString::fromStdString(display.name),
            QString::number(display.width), QString::number(display.height)));
    return names;
}

int SourceChoice::screen() const
{
    if (!m_model)
        return -1;
    const auto& displays = this->displays();
    const auto found = std::ranges::find(displays, m_model->settings()->displayID(), &Display::id);
    return found == displays.end() ? -1 : static_cast<int>(found - displays.begin());
}

void SourceChoice::setScreen(int index)
{
    const auto& displays = this->displays();
    if (isWithin(index, displays))
        m_model->settings()->setDisplayID(displays[static_cast<std::size_t>(index)].id);
}

QStringList SourceChoice::cameras() const
{
    return namesOf(cameraDevices());
}

int SourceChoice::camera() const
{
    return m_model ? indexOf(m_model->settings()->cameraID(), cameraDevices()) : -1;
}

void SourceChoice::setCamera(int index)
{
    const auto& cameras = cameraDevices();
    if (isWithin(index, cameras))
        m_model->settings()->setCameraID(QString::fromStdString(cameras[static_cast<std::size_t>(index)].id));
}

QStringList SourceChoice::microphones() const
{
    return namesOf(microphoneDevices());
}

int SourceChoice::microphone() const
{
    return m_model ? indexOf(m_model->settings()->micID(), microphoneDevices()) : -1;
}

void SourceChoice::setMicrophone(int index)
{
    const auto& microphones = microphoneDevices();
    if (isWithin(index, microphones))
        m_model->settings()->setMicID(QString::fromStdString(microphones[static_cast<std::size_t>(index)].id));
}

} // namespace vantry
