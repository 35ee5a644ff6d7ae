#include "capture/CaptureSession.h"

#include "base/Background.h"
#include "capture/CameraPictures.h"
#include "platform/CameraStream.h"
#include "platform/MicrophoneStream.h"

namespace vantry {

using namespace std::chrono_literals;

namespace {

constexpr int mostWaitingPictures = 4;
constexpr HostDuration longestModeWait = 1s;
constexpr HostDuration reconnectWait = 1s;
constexpr PictureSize fullHd{ 1920, 1080 };

DeviceSlot::Options cameraOptions()
{
    // The slowest in the dark sends more often.
    return {
        .longestSilence = 3s, .silence = "The camera sends no pictures", .advice = "Close what else uses it, or choose another one."
    };
}

DeviceSlot::Options microphoneOptions()
{
    return { .longestSilence = 2s,
        .silence = "no sound comes from it",
        .advice = "Close what else uses it, or choose another one. Your voice is not recorded." };
}

/// Frames stop coming before the pictures that wait are dropped.
struct OpenCamera {
    OpenCamera(PipeWireLoop& loop, const std::string& id, CameraPictures::Handler onPicture, CameraStream::Handlers handlers)
        : pictures(std::move(onPicture))
        , stream(loop, id, withFrames(std::move(handlers)))
    {
    }

    CameraStream::Handlers withFrames(CameraStream::Handlers handlers)
    {
        handlers.onFrame = [this](const CameraFrame& frame) { pictures.take(frame); };
        return handlers;
    }

    CameraPictures pictures;
    CameraStream stream;
};

} // namespace

CaptureSession::CaptureSession(Worker& captureQueue, Sinks sinks)
    : m_captureQueue(captureQueue)
    , m_sinks(std::move(sinks))
    , m_camera(cameraOptions(), actionsFor(CaptureSource::Camera))
    , m_microphone(microphoneOptions(), actionsFor(CaptureSource::Microphone))
    , m_reminder([this] { m_sessionQueue.post([this] { connect(); }); })
{
}

CaptureSession::~CaptureSession()
{
    m_reminder.stop();
    m_sessionQueue.sync([this] {
        m_isClosing = true;
        m_onDevices = {};
        m_onTrouble = {};
        m_isRunning = false;
        update();
        m_devices.reset();
        m_loop.reset();
    });
    m_captureQueue.sync([] {}); // What the devices posted has run.
}

DeviceSlot::Actions CaptureSession::actionsFor(CaptureSource source)
{
    const bool isCamera = source == CaptureSource::Camera;
    return {
        .open = [this, isCamera](const MediaDevice& device,
                    std::uint64_t number) { return isCamera ? openCamera(device, number) : openMicrophone(device, number); },
        .lastSign = [this, isCamera] { return isCamera ? latestPicture() : m_meter.latest(); },
        .tell = [this, source](const std::optional<std::string>& trouble) { tell(source, trouble); },
        .retryIn = [this](HostDuration delay) { m_reminder.remindIn(delay); },
    };
}

void CaptureSession::configure(const std::optional<std::string>& camera, const std::optional<std::string>& microphone)
{
    m_isCameraChosen = camera.has_value();
    m_sessionQueue.post([this, camera, microphone] {
        m_camera.want(camera);
        m_microphone.want(microphone);
        if (camera != m_wantedCamera)
            setMode({});
        m_wantedCamera = camera;
        connect();
    });
}

void CaptureSession::startCamera()
{
    m_sessionQueue.post([this] {
        m_isRunning = true;
        connect();
    });
}

void CaptureSession::stopCamera()
{
    m_sessionQueue.post([this] {
        m_isRunning = false;
        update();
    });
}

/// Also brings everything up to date.
void CaptureSession::connect()
{
    if (m_isClosing)
        return;
    if (m_loop)
        return update();
    try {
        m_loop = std::make_unique<PipeWireLoop>("vantry.media", [this](const AppError& error) {
            m_sessionQueue.post([this, reason = std::string(error.what())] { disconnect(reason); });
        });
    } catch (const AppError& error) {
        if (!m_serverTrouble)
            setServerTrouble(std::string(error.what()) + ". Start PipeWire to record camera and microphone.");
        return m_reminder.remindIn(reconnectWait);
    }
    setServerTrouble({});
    m_devices = std::make_unique<MediaDevices>(*m_loop, [this](const MediaDeviceList&) {
        m_sessionQueue.post([this] {
            if (m_devices)
                setDevices(m_devices->list());
        });
    });
    setDevices(m_devices->list());
}

void CaptureSession::disconnect(const std::string& reason)
{
    if (m_isClosing)
        return;
    setDevices({});
    m_devices.reset();
    m_loop.reset();
    setServerTrouble(reason);
    m_reminder.remindIn(reconnectWait);
}

void CaptureSession::setServerTrouble(const std::optional<std::string>& trouble)
{
    if (std::exchange(m_serverTrouble, trouble) != trouble)
        tell(CaptureSource::MediaServer, trouble);
}

void CaptureSession::setDevices(const MediaDeviceList& list)
{
    {
        const std::lock_guard guard(m_mutex);
        m_list = list;
    }
    if (m_onDevices)
        m_onDevices(list);
    update();
}

void CaptureSession::update()
{
    const auto list = devices();
    m_camera.update(list.cameras, m_isRunning);
    m_isCameraRefused = !m_camera.refusal().empty();
    m_microphone.update(list.microphones, m_isRunning);
    if (!m_camera.isOpen() && m_preview.latest())
        m_preview.set({});
    if (!m_microphone.isOpen())
        m_meter.reset();
}

void CaptureSession::tell(CaptureSource source, const std::optional<std::string>& trouble)
{
    if (m_onTrouble)
        m_onTrouble(source, trouble);
}

HostTime CaptureSession::latestPicture() const
{
    const auto latest = m_preview.latest();
    return latest ? latest->time : HostTime();
}

DeviceSlot::Stream CaptureSession::openCamera(const MediaDevice& device, std::uint64_t number)
{
    return std::make_shared<OpenCamera>(
        *m_loop, device.id, [this](const PictureSample& sample) { onPicture(sample); },
        CameraStream::Handlers{
            .onFrame = {},
            .onMode = [this](const CameraMode& mode) { setMode(mode); },
            .onFailed =
                [this, number](const AppError& error) {
                    m_sessionQueue.post([this, number, error] {
                        m_camera.fail(number, error);
                        update();
                    });
                },
        });
}

DeviceSlot::Stream CaptureSession::openMicrophone(const MediaDevice& device, std::uint64_t number)
{
    return std::make_shared<MicrophoneStream>(*m_loop, device.id,
        MicrophoneStream::Handlers{
            .onSound = [this](std::span<const float> samples, HostTime time) { onSound(samples, time); },
            .onFailed =
                [this, number](const AppError& error) {
                    m_sessionQueue.post([this, number, error] {
                        m_microphone.fail(number, error);
                        update();
                    });
                },
        });
}

void CaptureSession::setMode(const std::optional<CameraMode>& mode)
{
    {
        const std::lock_guard guard(m_mutex);
        m_mode = mode;
    }
    m_changed.notify_all();
}

std::optional<CameraMode> CaptureSession::awaitMode()
{
    std::unique_lock lock(m_mutex);
    if (m_camera.isOpen())
        m_changed.wait_for(lock, longestModeWait, [this] { return m_mode.has_value(); });
    return m_mode;
}

/// A camera that is refused is tried again, and its first picture comes before anybody has noted that it is well.
bool CaptureSession::hasCamera() const
{
    return m_isCameraChosen && (!m_isCameraRefused || m_preview.latest());
}

std::optional<PictureSize> CaptureSession::cameraSize()
{
    return m_sessionQueue.sync([this]() -> std::optional<PictureSize> {
        if (!m_camera.isTaken())
            return std::nullopt;
        const auto mode = awaitMode();
        return mode ? PictureSize{ std::max(mode->width & ~1, 2), std::max(mode->height & ~1, 2) } : fullHd;
    });
}

bool CaptureSession::hasMic()
{
    return m_sessionQueue.sync([this] { return m_microphone.isTaken(); });
}

std::string CaptureSession::refusal()
{
    return m_sessionQueue.sync([this] {
        const std::string camera = m_camera.refusal();
        return camera.empty() ? m_microphone.refusal() : camera;
    });
}

/// On the camera's thread.
void CaptureSession::onPicture(const PictureSample& sample)
{
    m_preview.set(sample);
    if (m_waitingPictures >= mostWaitingPictures)
        return;
    ++m_waitingPictures;
    m_captureQueue.post([this, sample] {
        m_sinks.onPicture(sample);
        --m_waitingPictures;
    });
}

/// On the media library's thread.
void CaptureSession::onSound(std::span<const float> samples, HostTime time)
{
    m_meter.add(samples);
    m_sound.take({ .sound = { .channels = 1, .samples = { samples.begin(), samples.end() } }, .time = time });
}

MediaDeviceList CaptureSession::devices() const
{
    const std::lock_guard guard(m_mutex);
    return m_list;
}

QFuture<bool> CaptureSession::setOnDevices(std::function<void(const MediaDeviceList&)> handler)
{
    return inBackground(m_sessionQueue, [this, handler = std::move(handler)] {
        const bool wasConnected = m_loop != nullptr;
        m_onDevices = handler;
        connect();
        if (m_onDevices && wasConnected)
            m_onDevices(devices());
        return m_loop != nullptr;
    });
}

void CaptureSession::setOnTrouble(TroubleHandler handler)
{
    m_sessionQueue.post([this, handler = std::move(handler)] { m_onTrouble = handler; });
}

} // namespace vantry
