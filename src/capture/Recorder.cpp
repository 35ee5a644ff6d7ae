#include "capture/Recorder.h"

#include "base/Background.h"
#include "base/Log.h"

#include <algorithm>
#include <chrono>
#include <unistd.h>

namespace vantry {

using namespace std::chrono_literals;

namespace {

constexpr auto longestFirstFrameWait = 3s;
constexpr auto longestPast = 1s; ///< What a writer can still cut off.

} // namespace

Recorder::~Recorder()
{
    m_captureQueue.sync([this] { resumeFirstFrame(); });
    m_screenQueue.finish();
    m_stream.reset();
    m_systemSound.reset();
    m_captureQueue.sync([this] {
        if (m_writer)
            m_writer->finish(HostClock::now(), [](const ClipOutcome&) {});
        m_writer.reset();
        m_finishing.reset();
    });
}

void Recorder::setOnTrouble(TroubleHandler handler)
{
    m_onTrouble = handler;
    m_session.setOnTrouble([this, handler = std::move(handler)](CaptureSource source, const std::optional<std::string>& trouble) {
        if (handler)
            m_captureQueue.post([handler, source, trouble] { handler(source, trouble); });
    });
}

QFuture<void> Recorder::startScreen(const Display& display)
{
    return inBackground(m_screenQueue, [this, display, systemAudio = m_captureSystemAudio] {
        openStream(display);
        if (systemAudio)
            openSystemSound();
        m_captureQueue.sync([this] { m_systemAudio = m_systemSound != nullptr; });
        awaitFirstFrame();
    });
}

QFuture<void> Recorder::stopScreen()
{
    return inBackground(m_screenQueue, [this] {
        m_stream.reset();
        m_systemSound.reset();
        m_captureQueue.sync([this] {
            m_latestScreen.reset();
            m_latestSystemSound.reset();
            onSystemSound({});
        });
    });
}

void Recorder::openStream(const Display& display)
{
    m_stream.reset();
    m_systemSound.reset();
    const ScreenStream::Handlers handlers{
        .onFrame = [this](const ScreenFrame& frame) { onFrame(frame); },
        .onError =
            [this](const AppError& error) {
                if (m_onStreamError)
                    m_onStreamError(QString::fromUtf8(error.what()));
            },
    };
    // Our own windows are no part of what is recorded.
    m_stream = std::make_unique<ScreenStream>(
        display, m_captureQueue, handlers, ScreenStream::Options{ .excludedProcesses = { getpid() } });
    m_captureQueue.sync([this, width = m_stream->width(), height = m_stream->height()] { m_screenSize = { width, height }; });
}

/// Without it the screen is recorded all the same.
void Recorder::openSystemSound()
{
    const SystemSoundSource::Handlers handlers{
        .onSound =
            [this](const SoundSample& sample) {
                m_latestSystemSound = sample;
                append(sample, TrackKind::system);
            },
        .onChange = [this](const std::optional<AppError>& problem) { onSystemSound(problem); },
    };
    try {
        m_systemSound = std::make_unique<SystemSoundSource>(m_captureQueue, handlers);
        m_captureQueue.post([this] { onSystemSound({}); });
    } catch (const AppError& error) {
        m_captureQueue.post([this, error] { onSystemSound(error); });
    }
}

void Recorder::onSystemSound(const std::optional<AppError>& problem)
{
    std::optional<std::string> trouble;
    if (problem)
        trouble = std::string("Other applications' sound is not recorded: ") + problem->what();
    if (std::exchange(m_systemTrouble, trouble) == trouble)
        return;
    qCInfo(logCapture, "%s", trouble.value_or("other applications' sound is well").c_str());
    if (m_onTrouble)
        m_onTrouble(CaptureSource::SystemSound, trouble);
}

void Recorder::awaitFirstFrame()
{
    std::future<void> arrived = m_captureQueue.sync([this] {
        m_firstFrame.emplace();
        std::future<void> future = m_firstFrame->get_future();
        if (m_latestScreen)
            resumeFirstFrame();
        return future;
    });
    if (arrived.wait_for(longestFirstFrameWait) == std::future_status::timeout)
        m_captureQueue.sync([this] { m_firstFrame.reset(); });
}

void Recorder::onFrame(const ScreenFrame& frame)
{
    m_latestScreen = frame;
    resumeFirstFrame();
    append(frame, TrackKind::screen);
}

void Recorder::resumeFirstFrame()
{
    if (!m_firstFrame)
        return;
    m_firstFrame->set_value();
    m_firstFrame.reset();
}

void Recorder::beginClip(const std::filesystem::path& file)
{
    ClipTracks tracks{ .screen = {}, .camera = m_session.cameraSize(), .audio = m_session.hasMic() };
    m_captureQueue.sync([&] {
        const HostTime start = HostClock::now();
        tracks.screen = m_screenSize;
        tracks.system = m_systemAudio;
        auto writer = std::make_unique<ClipWriter>(file, tracks, start, [this](const std::string& text) {
            if (m_onClipProblem)
                m_onClipProblem(QString::fromStdString(text));
        });
        // A still screen sends nothing, and yet every clip begins with a picture.
        if (m_latestScreen)
            writer->append(PictureSample{ m_latestScreen->picture, start }, TrackKind::screen);
        // The camera's next picture is a moment away, and until then the bare screen would be seen.
        if (const auto camera = m_session.preview().latest(); camera && tracks.camera)
            writer->append(PictureSample{ camera->picture, start }, TrackKind::camera);
        // A stretch of sound comes when it begins: the one that came last reaches into the clip.
        if (m_latestSound && tracks.audio)
            writer->append(*m_latestSound, TrackKind::audio);
        if (m_latestSystemSound && tracks.system)
            writer->append(*m_latestSystemSound, TrackKind::system);
        m_writer = std::move(writer);
        m_clipStart = start;
    });
}

QFuture<std::optional<double>> Recorder::endClip(HostTime end)
{
    const auto promise = std::make_shared<QPromise<std::optional<double>>>();
    promise->start();
    const auto complete = [promise](std::optional<double> duration) {
        promise->addResult(duration);
        promise->finish();
    };
    m_captureQueue.sync([&] {
        if (!m_writer)
            return complete(std::nullopt);
        m_finishing = std::move(m_writer);
        const HostTime now = HostClock::now();
        m_clipEnd = std::clamp(end, std::max(m_clipStart, now - longestPast), std::max(m_clipStart, now));
        m_finishing->finish(m_clipEnd, [this, complete](const ClipOutcome& outcome) {
            onFinished(outcome);
            complete(outcome.duration);
        });
    });
    return promise->future();
}

/// On a thread of the writer, which therefore cannot be destroyed here.
void Recorder::onFinished(const ClipOutcome& outcome)
{
    for (std::size_t i = 0; i < outcome.counts.size(); ++i)
        qCInfo(logCapture) << "clip track" << i << "took" << outcome.counts[i].appended << "dropped" << outcome.counts[i].dropped;
    if (!outcome.duration)
        qCWarning(logCapture) << "clip not completed:" << outcome.problem.c_str();
    if (m_onClip)
        m_onClip(outcome);
    m_captureQueue.post([this] { m_finishing.reset(); });
}

double Recorder::elapsed()
{
    return m_captureQueue.sync([this] {
        if (m_writer)
            return seconds(HostClock::now() - m_clipStart);
        return m_finishing ? seconds(m_clipEnd - m_clipStart) : 0.0;
    });
}

} // namespace vantry
