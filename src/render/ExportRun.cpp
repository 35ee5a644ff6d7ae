#include "render/ExportRun.h"

#include "base/Worker.h"
#include "render/AudioMix.h"
#include "render/Compositor.h"
#include "render/TrackPictures.h"

#include <algorithm>
#include <utility>

namespace vantry {

namespace {

constexpr int soundBitRate = 384'000;

/// Enough that no stage waits for another's hiccup, little enough that long videos need no more memory than short ones.
constexpr std::size_t picturesAhead = 4;
constexpr std::size_t soundAhead = 32;

constexpr auto progressInterval = std::chrono::milliseconds(100);

MediaTime frameTime(std::int64_t frame)
{
    return frame * frameDuration;
}

PacketSink into(std::vector<Packet>& packets)
{
    return [&packets](Packet packet) { packets.push_back(std::move(packet)); };
}

} // namespace

ExportRun::ExportRun(const ExportOptions& options, CompositionPlan plan, const std::filesystem::path& file)
    : m_options(options)
    , m_plan(std::move(plan))
    , m_frameCount(m_plan.frameCount())
    , m_screen(picturesAhead)
    , m_camera(picturesAhead)
    , m_frames(picturesAhead)
    , m_sound(soundAhead)
    , m_encoder(exportSettings(m_plan.size))
    , m_muxer(file, MovieFormat::Publish)
{
    m_pictureTrack = m_muxer.addTrack(m_encoder);
    if (m_plan.hasSound()) {
        m_soundEncoder.emplace(AudioEncoderSettings{ .channels = TrackSound::channels, .bitRate = soundBitRate });
        m_soundTrack = m_muxer.addTrack(*m_soundEncoder);
    }
    m_muxer.start();
}

ExportOutcome ExportRun::run()
{
    {
        const std::stop_callback onCancel(m_options.cancel, [this] { stop(); });
        Worker screen("export-screen"), camera("export-camera"), compositor("export-compose"), sound("export-sound");
        screen.post([this] { runStage([this] { decode(TrackKind::screen, m_screen); }); });
        camera.post([this] { runStage([this] { decode(TrackKind::camera, m_camera); }); });
        compositor.post([this] { runStage([this] { compose(); }); });
        if (m_soundEncoder)
            sound.post([this] { runStage([this] { encodeSound(); }); });
        runStage([this] { encodeAndWrite(); });
    }
    if (m_error)
        std::rethrow_exception(m_error);
    return m_options.cancel.stop_requested() ? ExportOutcome::Cancelled : ExportOutcome::Finished;
}

void ExportRun::runStage(const std::function<void()>& stage)
{
    try {
        stage();
    } catch (...) {
        {
            const std::lock_guard lock(m_errorMutex);
            if (!m_error)
                m_error = std::current_exception();
        }
        stop();
    }
}

void ExportRun::stop()
{
    m_screen.abandon();
    m_camera.abandon();
    m_frames.abandon();
    m_sound.abandon();
}

void ExportRun::decode(TrackKind role, BoundedQueue<Picture>& pictures)
{
    TrackPictures track(m_plan.segmentsOf(role), {});
    for (std::int64_t frame = 0; frame < m_frameCount; ++frame)
        if (!pictures.push(track.at(frameTime(frame))))
            return;
}

void ExportRun::compose()
{
    const auto instruction = std::make_shared<const RenderInstruction>(
        RenderInstruction{ .duration = m_plan.duration, .project = m_options.project, .images = m_options.images });
    Compositor compositor(instruction, m_plan.size.width, m_plan.size.height);
    for (std::int64_t frame = 0; frame < m_frameCount; ++frame) {
        const auto screen = m_screen.pop();
        const auto camera = m_camera.pop();
        if (!screen || !camera || !m_frames.push(compositor.compose(frameTime(frame), *screen, *camera)))
            return;
    }
}

void ExportRun::encodeSound()
{
    AudioMix mix(m_plan);
    const auto end = std::chrono::round<SampleCount>(m_plan.duration);
    SampleCount position{};
    for (std::int64_t frame = 0; frame < m_frameCount; ++frame) {
        const auto next = std::min(std::chrono::round<SampleCount>(frameTime(frame + 1)), end);
        SoundPackets packets;
        m_soundEncoder->encode(mix.next(next - position), into(packets));
        if (frame + 1 == m_frameCount)
            m_soundEncoder->finish(into(packets));
        if (!m_sound.push(std::move(packets)))
            return;
        position = next;
    }
}

void ExportRun::encodeAndWrite()
{
    const PacketSink writePicture = [this](Packet packet) { m_muxer.write(m_pictureTrack, std::move(packet)); };
    for (std::int64_t frame = 0; frame < m_frameCount; ++frame) {
        const auto picture = m_frames.pop();
        if (!picture)
            return;
        m_encoder.encode(*picture, frameTime(frame), PictureKind::Any, writePicture);
        if (m_soundTrack >= 0 && !writeSound())
            return;
        reportProgress(frame);
    }
    m_encoder.finish(writePicture);
    m_muxer.finish();
}

/// Writes one frame's sound, so that both tracks grow in step. False when the export was given up.
bool ExportRun::writeSound()
{
    auto packets = m_sound.pop();
    if (!packets)
        return false;
    for (auto& packet : *packets)
        m_muxer.write(m_soundTrack, std::move(packet));
    return true;
}

void ExportRun::reportProgress(std::int64_t frame)
{
    const auto now = std::chrono::steady_clock::now();
    if (!m_options.onProgress || now - m_lastProgress < progressInterval)
        return;
    m_lastProgress = now;
    m_options.onProgress(static_cast<double>(frame + 1) / static_cast<double>(m_frameCount));
}

} // namespace vantry
