#include "render/ExportRun.h"

#include "base/Worker.h"
#include "render/AudioMix.h"

#include <algorithm>
#include <utility>

namespace vantry {

namespace {

constexpr int soundBitRate = 384'000;

/// Enough that no stage waits for another's hiccup, little enough that long videos need no more memory than short ones.
constexpr std::size_t framesAhead = 6;
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

ExportResult ExportRun::run()
{
    {
        const std::stop_callback onCancel(m_options.cancel, [this] { m_sound.abandon(); });
        Worker sound("export-sound");
        if (m_soundEncoder)
            sound.post([this] { runStage([this] { encodeSound(); }); });
        runStage([this] { encodeAndWrite(); });
    }
    if (m_error)
        std::rethrow_exception(m_error);
    return { .outcome = m_options.cancel.stop_requested() ? ExportOutcome::Cancelled : ExportOutcome::Finished,
        .damage = m_damage.found() };
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
        m_sound.abandon();
    }
}

void ExportRun::encodeSound()
{
    AudioMix mix(m_plan, {}, &m_damage);
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
    m_frames.setComposition(m_plan,
        std::make_shared<const RenderInstruction>(
            RenderInstruction{ .duration = m_plan.duration, .project = m_options.project, .images = m_options.images }));
    std::int64_t asked = 0;
    for (std::int64_t frame = 0; frame < m_frameCount; ++frame) {
        while (asked < m_frameCount && m_frames.asked() < framesAhead)
            m_frames.ask(asked++);
        m_encoder.encode(m_frames.take(), frameTime(frame), PictureKind::Any, writePicture);
        if (m_options.cancel.stop_requested() || (m_soundTrack >= 0 && !writeSound()))
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
