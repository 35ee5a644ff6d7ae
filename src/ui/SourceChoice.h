#pragma once

#include "model/AppModel.h"
#include "model/CaptureDevices.h"

#include <QObject>
#include <QStringList>
#include <qqmlregistration.h>

#include <vector>

namespace vantry {

/// The screens, cameras and microphones there are, as lists to choose from, and which of them are chosen: -1 where none is. Screens
/// that come and go are followed.
class SourceChoice : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(vantry::AppModel* model READ model WRITE setModel NOTIFY modelChanged REQUIRED)
    Q_PROPERTY(QStringList screens READ screens NOTIFY screensChanged)
    Q_PROPERTY(int screen READ screen WRITE setScreen NOTIFY screensChanged)
    Q_PROPERTY(QStringList cameras READ cameras NOTIFY camerasChanged)
    Q_PROPERTY(int camera READ camera WRITE setCamera NOTIFY camerasChanged)
    Q_PROPERTY(QStringList microphones READ microphones NOTIFY microphonesChanged)
    Q_PROPERTY(int microphone READ microphone WRITE setMicrophone NOTIFY microphonesChanged)

public:
    AppModel* model() const { return m_model; }

    /// The model outlives it.
    void setModel(AppModel* model);

    /// "NAME — 1920×1080".
    QStringList screens() const;
    int screen() const;
    void setScreen(int index);

    QStringList cameras() const;
    int camera() const;
    void setCamera(int index);

    QStringList microphones() const;
    int microphone() const;
    void setMicrophone(int index);

Q_SIGNALS:
    void modelChanged();
    void screensChanged();
    void camerasChanged();
    void microphonesChanged();

private:
    const std::vector<Display>& displays() const;
    const std::vector<MediaDevice>& cameraDevices() const;
    const std::vector<MediaDevice>& microphoneDevices() const;

    AppModel* m_model = nullptr;
};

} // namespace vantry
