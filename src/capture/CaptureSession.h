#pragma once

#include "base/Worker.h"
#include "capture/CameraPreview.h"
#include "capture/CaptureTrouble.h"
#include "capture/DeviceSlot.h"
#include "capture/MediaConnection.h"
#include "capture/PowerMeter.h"
#include "capture/Reminder.h"
#include "capture/Sample.h"
#include "capture/SoundHandOver.h"
#include "media/PictureSize.h"
#include "platform/CameraFrame.h"
#include "platform/MediaDevices.h"

#include <QFuture>
#include <QPromise>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// The one camera and the one microphone: which devices there are, which of them are used, their pictures and sound. Operations may
/// be called on any thread but the capture queue, and none waits: what they change is done in their order on the session queue,
/// what they ask is known from there. Connects to the media server on first use, and again when that was lost.
class CaptureSession {
public:
    /// Both are called on the capture queue and never after the session is destroyed. Camera pictures that come while others wait
    /// there are discarded.
    struct Sinks {
        std::function<void(const PictureSample&)> onPicture;
        std::function<void(const SoundSample&)> onSound;
    };

    /// The queue must outlive the session.
    CaptureSession(Worker& captureQueue, Sinks sinks);
    ~CaptureSession();

    /// Chooses the devices by their identifiers. A device that is used already is not disturbed, one that is not there is left out
    /// until it comes.
    void configure(const std::optional<std::string>& camera, const std::optional<std::string>& microphone);

    /// Opens the devices that were chosen, now and later.
    void startCamera();
    void stopCamera();

    /// A camera was chosen, and it is not refused.
    bool hasCamera() const;

    /// Done when the above has been done and a camera that is just being opened has said what it delivers, or after a second
    /// without its word. What is asked below is up to date then.
    QFuture<void> settled();

    /// In pixels, even; nothing without a camera. Of one that has not yet said it, full HD.
    std::optional<PictureSize> cameraSize() const;
    bool hasMic() const;

    /// For the user: why the chosen camera or microphone, which is there, gives nothing. Empty when all is well.
    std::string refusal() const;

    /// The average power in dBFS, -160 without a microphone.
    float micPower() const { return m_meter.power(); }

    CameraPreview& preview() { return m_preview; }

    MediaDeviceList devices() const;

    /// Called on the session queue: as soon as the devices are known and after every change. The future is done when they are
    /// known, or when there is no media server or none that answers, and says which.
    QFuture<bool> setOnDevices(std::function<void(const MediaDeviceList&)> handler);

    /// Called on the session queue with what the user should know: a device is gone or cannot be used, or all is well again.
    void setOnTrouble(TroubleHandler handler);

private:
    template <typename Result>
    using Promise = std::shared_ptr<QPromise<Result>>;
    struct Settling {
        Promise<void> promise;
        HostTime latest;
    };

    /// What others may ask.
    struct Known {
        MediaDeviceList devices;
        std::optional<CameraMode> mode; ///< What the chosen camera delivers, or did when it was last there.
        bool hasCamera = false;
        bool hasMicrophone = false;
        std::string refusal;
    };

    void post(std::function<void()> change);
    void update();
    void takeDevices();
    void updateSlots(const MediaDeviceList& list);
    void note(const MediaDeviceList& list);
    void answer();
    void settle();
    void tell(CaptureSource source, const std::optional<std::string>& trouble);

    DeviceSlot::Actions actionsFor(CaptureSource source);
    HostTime latestPicture() const;
    DeviceSlot::Stream openCamera(const MediaDevice& device, std::uint64_t number);
    DeviceSlot::Stream openMicrophone(const MediaDevice& device, std::uint64_t number);
    std::optional<CameraMode> mode() const;
    void setMode(const std::optional<CameraMode>& mode);
    void onPicture(const PictureSample& sample);
    void onSound(std::span<const float> samples, HostTime time);

    Worker& m_captureQueue;
    const Sinks m_sinks;

    // Safe to use from any thread.
    std::atomic<bool> m_isCameraChosen = false;
    std::atomic<bool> m_isCameraRefused = false;
    std::atomic<int> m_waitingPictures = 0;
    PowerMeter m_meter;
    SoundHandOver m_sound{ m_captureQueue, m_sinks.onSound };
    CameraPreview m_preview;

    mutable std::mutex m_mutex;
    Known m_known; ///< Guarded by the mutex; but for the mode, the session queue writes it.

    // Belong to the session queue.
    std::function<void(const MediaDeviceList&)> m_onDevices;
    TroubleHandler m_onTrouble;
    bool m_isRunning = false;
    bool m_isClosing = false;
    std::optional<std::string> m_toldServerTrouble;
    std::optional<MediaDeviceList> m_toldDevices;
    std::vector<Promise<bool>> m_listing;
    std::vector<Settling> m_settling;
    MediaConnection m_connection;
    std::optional<std::string> m_wantedCamera;
    DeviceSlot m_camera;
    DeviceSlot m_microphone;

    Worker m_sessionQueue{ "vantry.session" };
    Reminder m_reminder; ///< Posts to the session queue.
};

} // namespace vantry
