#pragma once

#include "platform/MediaDevices.h"

#include <QString>

#include <optional>

namespace vantry {

class Settings;

/// Which camera and which microphone are recorded: what the user chose last where that is there, else what the settings say, the
/// first camera, the system's own microphone. Belongs to the main thread.
class DeviceChoice {
public:
    /// The settings outlive it.
    explicit DeviceChoice(Settings& settings)
        : m_settings(settings)
    {
    }

    /// What there is now. Nothing is chosen by this alone.
    void setDevices(const MediaDeviceList& devices) { m_devices = devices; }

    /// Chooses again what the user chose, where it is there. The first time, what is not there gives way to something else; later
    /// it is kept, for what was unplugged comes back.
    void choose();

    /// Nothing where there is none.
    const MediaDevice* camera() const;
    const MediaDevice* microphone() const;

    /// For the user: that the chosen one is not there, and what is recorded instead. Nothing when it is as chosen.
    std::optional<QString> cameraTrouble() const;

    /// The same; where there is no microphone at all, that is a trouble also for whoever has never chosen one.
    std::optional<QString> microphoneTrouble() const;
    bool isMicrophoneExpected() const { return !wantedMicrophone().isEmpty(); }

private:
    QString wantedCamera() const;
    QString wantedMicrophone() const;

    Settings& m_settings;
    MediaDeviceList m_devices;
    bool m_hasChosen = false;
};

} // namespace vantry
