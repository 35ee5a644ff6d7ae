#pragma once

#include "base/Worker.h"
#include "capture/CaptureSession.h"
#include "capture/ClipWriter.h"
#include "capture/ScreenStream.h"
#include "capture/SystemSoundSource.h"
#include "platform/Displays.h"

#include <QFuture>
#include <QString>

#include <filesystem>
#include <functional>
#include <future>
#include <memory>
#include <optional>

namespace vantry {

/// The one capture engine: owns the camera and the microphone, the screen stream, the writer of the clip in progress and the latest
/// frame of the screen, and hands every sample to the writer. Its operations are called on the main thread; those that take long
/// give a future. Destroying it in the middle of a clip finishes the clip's file.
class Recorder {
public:
    using StreamErrorHandler = std::function<void(const QString& description)>;
    using ClipProblemHandler = std::function<void(const QString& text)>;
    using ClipHandler = std::function<void(const ClipOutcome& outcome)>;

    Recorder() = default;
    ~Recorder();

    /// Called on the capture queue when the screen stream ended by itself. To be set before the first start.
    void setOnStreamError(StreamErrorHandler handler) { m_onStreamError = std::move(handler); }

    /// Called on the capture queue with what the user should know of camera, microphone and other programs' sound. To be set before
    /// the first start.
    void setOnTrouble(TroubleHandler handler);

    /// Called on a thread of the clip's writer when the clip had better end now, with why. To be set before the first clip.
    void setOnClipProblem(ClipProblemHandler handler) { m_onClipProblem = std::move(handler); }

    /// Called when a clip's file is complete, on a thread of its writer, before `endClip`'s future is done: how its tracks fared.
    /// To be set before the first clip.
    void setOnClip(ClipHandler handler) { m_onClip = std::move(handler); }

    /// Whether the next screen stream comes with other programs' sound; a running one stays as it is.
    void setCaptureSystemAudio(bool captured) { m_captureSystemAudio = captured; }

    /// Starts the stream and is done when its first frame has come, or after 3 seconds without one. Fails with an AppError.
    QFuture<void> startScreen(const Display& display);

    /// Done when the stream is gone, and the latest frame with it.
    QFuture<void> stopScreen();

    /// Opens a writer for the file; samples go there from now on, the screen as it is now before all others. The session should be
    /// `settled`. Throws AppError when the file cannot be opened; what was recorded before goes on then.
    void beginClip(const std::filesystem::path& file);

    /// Takes the writer away from the samples at once and finishes its file, which ends at `end`: now, or up to a second ago. The
    /// clip's length in seconds; nothing when there was no clip or its file could not be completed.
    QFuture<std::optional<double>> endClip(HostTime end = HostClock::now());

    /// Seconds since the clip's start, up to its end when that has come; 0 without a clip, and when its file is complete.
    double elapsed();

    /// Camera and microphone: which there are, which are used, what they see and hear. A clip has their tracks when they were there
    /// at its start or before.
    CaptureSession& session() { return m_session; }

    /// A camera was chosen, and it is not refused.
    bool hasCamera() const { return m_session.hasCamera(); }

private:
    void openStream(const Display& display);
    void openSystemSound();
    void onSystemSound(const std::optional<AppError>& problem);
    void awaitFirstFrame();
    void onFrame(const ScreenFrame& frame);
    template <typename Sample>
    void append(const Sample& sample, TrackKind kind)
    {
        if (m_writer)
            m_writer->append(sample, kind);
    }
    void resumeFirstFrame();
    void onFinished(const ClipOutcome& outcome);

    StreamErrorHandler m_onStreamError;
    TroubleHandler m_onTrouble;
    ClipProblemHandler m_onClipProblem;
    ClipHandler m_onClip;
    bool m_captureSystemAudio = false; ///< Belongs to the main thread.

    // Belong to the screen queue.
    std::unique_ptr<ScreenStream> m_stream;
    std::unique_ptr<SystemSoundSource> m_systemSound;

    // Belongs to the capture queue.
    std::unique_ptr<ClipWriter> m_writer;
    std::unique_ptr<ClipWriter> m_finishing; ///< The writer of a clip that has ended, until its file is complete.
    HostTime m_clipStart;
    HostTime m_clipEnd; ///< Of the one that is being finished.
    std::optional<ScreenFrame> m_latestScreen;
    std::optional<SoundSample> m_latestSound; ///< The microphone's.
    std::optional<SoundSample> m_latestSystemSound;
    std::optional<std::promise<void>> m_firstFrame;
    PictureSize m_screenSize;
    std::optional<std::string> m_systemTrouble;
    bool m_systemAudio = false; ///< The running stream comes with other programs' sound.

    // The screen's jobs wait for the capture queue, never the other way round.
    Worker m_captureQueue{ "vantry.capture" };
    Worker m_screenQueue{ "vantry.screen" };

    CaptureSession m_session{ m_captureQueue,
        {
            .onPicture = [this](const PictureSample& sample) { append(sample, TrackKind::camera); },
            .onSound =
                [this](const SoundSample& sample) {
                    m_latestSound = sample;
                    append(sample, TrackKind::audio);
                },
        } };
};

} // namespace vantry
