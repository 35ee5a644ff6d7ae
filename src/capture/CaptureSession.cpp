#include "capture/CaptureSession.h"

#include "capture/CameraPictures.h"
#include "platform/CameraStream.h"
#include "platform/MicrophoneStream.h"

namespace vantry {

using namespace std::chrono_literals;

namespace {

constexpr int mostWaitingPictures = 4;
constexpr HostDuration longestModeWait = 1s;
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
    , m_connection({ .onNews = [this] { post([] {}); }, .retryIn = [this](HostDuration delay) { m_reminder.remindIn(delay); } })
    , m_camera(cameraOptions(), actionsFor(CaptureSource::Camera))
    , m_microphone(microphoneOptions(), actionsFor(CaptureSource::Microphone))
    , m_reminder([this] { post([] {}); })
{
}

CaptureSession::~CaptureSession()
{
    m_reminder.stop();
    m_sessionQueue.sync([this] {
        m_onDevices = {};
        m_onTrouble = {};
        m_isRunning = false;
        m_isClosing = true;
        updateSlots({});
        m_connection.close();
        answer();
        settle();
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

/// What has changed is carried out, on the session queue.
void CaptureSession::post(std::function<void()> change)
{
    m_sessionQueue.post([this, change = std::move(change)] {
        if (m_isClosing)
            return;
        change();
        update();
    });
}

void CaptureSession::configure(const std::optional<std::string>& camera, const std::optional<std::string>& microphone)
{
    m_isCameraChosen = camera.has_value();
    post([this, camera, microphone] {
        m_camera.want(camera);
        m_microphone.want(microphone);
        if (std::exchange(m_wantedCamera, camera) != camera)
            setMode({});
    });
}

void CaptureSession::startCamera()
{
    post([this] { m_isRunning = true; });
}

void CaptureSession::stopCamera()
{
    post([this] { m_isRunning = false; });
}

void CaptureSession::update()
{
    if (m_connection.isLost()) {
        updateSlots({});
        m_connection.close();
    }
    m_connection.update(m_isRunning || !m_listing.empty());
    if (std::exchange(m_toldServerTrouble, m_connection.trouble()) != m_connection.trouble())
        tell(CaptureSource::MediaServer, m_connection.trouble());
    takeDevices();
    answer();
    settle();
}

void CaptureSession::takeDevices()
{
    const auto known = m_connection.devices();
    const MediaDeviceList list = known.value_or(MediaDeviceList());
    updateSlots(list);
    note(list);
    // What is not known yet is no news, what is not known any more is.
    if (!m_onDevices || m_toldDevices == list || !(known || m_toldDevices))
        return;
    m_toldDevices = list;
    m_onDevices(list);
}

void CaptureSession::updateSlots(const MediaDeviceList& list)
{
    m_camera.update(list.cameras, m_isRunning);
    m_microphone.update(list.microphones, m_isRunning);
    if (!m_camera.isOpen() && m_preview.latest())
        m_preview.set({});
    if (!m_microphone.isOpen())
        m_meter.reset();
}

void CaptureSession::note(const MediaDeviceList& list)
{
    const std::string camera = m_camera.refusal();
    m_isCameraRefused = !camera.empty();
    const std::lock_guard guard(m_mutex);
    m_known.devices = list;
    m_known.hasCamera = m_camera.isTaken();
    m_known.hasMicrophone = m_microphone.isTaken();
    m_known.refusal = camera.empty() ? m_microphone.refusal() : camera;
}

/// Those who wait for the list.
void CaptureSession::answer()
{
    const bool isKnown = m_connection.devices().has_value();
    if (!isKnown && !m_connection.trouble() && !m_isClosing)
        return;
    for (const auto& promise : std::exchange(m_listing, {})) {
        promise->addResult(isKnown);
        promise->finish();
    }
}

/// Those who wait until what was begun is done.
void CaptureSession::settle()
{
    const bool isOpening = m_connection.devices() ? m_camera.isOpen() && !mode() : !m_connection.trouble();
    std::erase_if(m_settling, [&, now = HostClock::now()](const Settling& settling) {
        if (isOpening && now < settling.latest && !m_isClosing)
            return false;
        settling.promise->finish();
        return true;
    });
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
        m_connection.loop(), device.id, [this](const PictureSample& sample) { onPicture(sample); },
        CameraStream::Handlers{
            .onFrame = {},
            .onMode =
                [this](const CameraMode& mode) {
                    setMode(mode);
                    post([] {});
                },
            .onFailed = [this, number](const AppError& error) { post([this, number, error] { m_camera.fail(number, error); }); },
        });
}

DeviceSlot::Stream CaptureSession::openMicrophone(const MediaDevice& device, std::uint64_t number)
{
    return std::make_shared<MicrophoneStream>(m_connection.loop(), device.id,
        MicrophoneStream::Handlers{
            .onSound = [this](std::span<const float> samples, HostTime time) { onSound(samples, time); },
            .onFailed = [this, number](
                            const AppError& error) { post([this, number, error] { m_microphone.fail(number, error); }); },
        });
}

std::optional<CameraMode> CaptureSession::mode() const
{
    const std::lock_guard guard(m_mutex);
    return m_known.mode;
}

void CaptureSession::setMode(const std::optional<CameraMode>& mode)
{
    const std::lock_guard guard(m_mutex);
    m_known.mode = mode;
}

/// A camera that is refused is tried again, and its first picture comes before anybody has noted that it is well.
bool CaptureSession::hasCamera() const
{
    return m_isCameraChosen && (!m_isCameraRefused || m_preview.latest());
}

QFuture<void> CaptureSession::settled()
{
    const auto promise = std::make_shared<QPromise<void>>();
    promise->start();
    post([this, promise] {
        m_settling.push_back({ promise, HostClock::now() + longestModeWait });
        m_reminder.remindIn(longestModeWait);
    });
    return promise->future();
}

std::optional<PictureSize> CaptureSession::cameraSize() const
{
    const std::lock_guard guard(m_mutex);
    if (!m_known.hasCamera)
        return std::nullopt;
    const auto& mode = m_known.mode;
    return mode ? PictureSize{ std::max(mode->width & ~1, 2), std::max(mode->height & ~1, 2) } : fullHd;
}

bool CaptureSession::hasMic() const
{
    const std::lock_guard guard(m_mutex);
    return m_known.hasMicrophone;
}

std::string CaptureSession::refusal() const
{
    const std::lock_guard guard(m_mutex);
    return m_known.refusal;
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
    return m_known.devices;
}

QFuture<bool> CaptureSession::setOnDevices(std::function<void(const MediaDeviceList&)> handler)
{
    const auto promise = std::make_shared<QPromise<bool>>();
    promise->start();
    post([this, promise, handler = std::move(handler)] {
        m_onDevices = handler;
        m_toldDevices.reset();
        m_listing.push_back(promise);
    });
    return promise->future();
}

void CaptureSession::setOnTrouble(TroubleHandler handler)
{
    m_sessionQueue.post([this, handler = std::move(handler)] { m_onTrouble = handler; });
}

} // namespace vantry
