#include "ExportClip.h"

#include "ExportMaterial.h"
#include "ScreenContent.h"
#include "capture/ClipSettings.h"
#include "media/AudioEncoder.h"
#include "media/Muxer.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace vantry::bench {

namespace {

constexpr PictureSize screenSize{ 1920, 1080 };
constexpr PictureSize cameraSize{ 1280, 720 };
constexpr int frameCount = exportClipSeconds * framesPerSecond;

PacketSink into(Muxer& muxer, int track)
{
    return [&muxer, track](Packet packet) { muxer.write(track, std::move(packet)); };
}

/// The recorder makes one every second.
PictureKind kindOf(int frame)
{
    return frame % framesPerSecond == 0 ? PictureKind::Keyframe : PictureKind::Any;
}

void writeScreen(VideoEncoder& encoder, const PacketSink& sink)
{
    ScreenContent content(screenSize.width, screenSize.height, Activity::Typing);
    for (int frame = 0; frame < frameCount; ++frame)
        encoder.encode(content.picture(frame), frame * frameDuration, kindOf(frame), sink);
    encoder.finish(sink);
}

/// A bright head that moves before a soft background, all of it a little noisy.
class CameraScene {
public:
    CameraScene()
        : m_noise(1 << 20)
    {
        std::normal_distribution<float> distribution(0, 1.5f);
        for (auto& value : m_noise)
            value = static_cast<std::int8_t>(std::lround(distribution(m_random)));
    }

    void draw(PictureBuffer& buffer, int frame)
    {
        const double centreX = cameraSize.width * (0.5 + 0.05 * std::sin(frame * 0.07));
        const double centreY = cameraSize.height * (0.45 + 0.03 * std::sin(frame * 0.11));
        const auto luma = buffer.plane(PlaneY);
        for (int y = 0; y < luma.height; ++y) {
            const auto* noise = &m_noise[m_random() % (m_noise.size() - cameraSize.width)];
            for (int x = 0; x < luma.width; ++x) {
                const double dx = (x - centreX) / 170, dy = (y - centreY) / 220;
                const double head = dx * dx + dy * dy;
                const int plain = head < 1 ? 170 - static_cast<int>(40 * head) : 60 + (x + y) / 32;
                luma.row(y)[x] = static_cast<std::uint8_t>(plain + noise[x]);
            }
        }
        for (int index : { PlaneCb, PlaneCr })
            for (int y = 0; y < buffer.plane(index).height; ++y)
                std::fill_n(
                    buffer.plane(index).row(y), cameraSize.width / 2, static_cast<std::uint8_t>(index == PlaneCb ? 118 : 140));
    }

private:
    std::mt19937 m_random{ 7 };
    std::vector<std::int8_t> m_noise;
};

void writeCamera(VideoEncoder& encoder, const PacketSink& sink)
{
    CameraScene scene;
    for (int frame = 0; frame < frameCount; ++frame) {
        PictureBuffer buffer(cameraSize.width, cameraSize.height);
        scene.draw(buffer, frame);
        encoder.encode(std::move(buffer).share(), frame * frameDuration, kindOf(frame), sink);
    }
    encoder.finish(sink);
}

void writeTone(AudioEncoder& encoder, int channels, double pitch, const PacketSink& sink)
{
    Sound second{ .channels = channels, .samples = {} };
    for (int i = 0; i < sampleRate; ++i)
        second.samples.insert(second.samples.end(), static_cast<std::size_t>(channels),
            static_cast<float>(0.1 * std::sin(i * pitch * 2 * std::numbers::pi / sampleRate)));
    for (int i = 0; i < exportClipSeconds; ++i)
        encoder.encode(second, sink);
    encoder.finish(sink);
}

} // namespace

void writeExportClip(const std::filesystem::path& file, Sounds sounds)
{
    AudioEncoder microphone({ .channels = 1, .bitRate = 96'000 });
    AudioEncoder system({ .channels = 2, .bitRate = 192'000 });
    VideoEncoder screen(clip::screenSettings(screenSize));
    VideoEncoder camera(clip::cameraSettings(cameraSize));
    Muxer muxer(file, MovieFormat::Clip);
    const int screenTrack = muxer.addTrack(screen);
    const int cameraTrack = muxer.addTrack(camera);
    const int microphoneTrack = sounds == Sounds::Both ? muxer.addTrack(microphone) : -1;
    const int systemTrack = sounds == Sounds::Both ? muxer.addTrack(system) : -1;
    muxer.start();
    writeScreen(screen, into(muxer, screenTrack));
    writeCamera(camera, into(muxer, cameraTrack));
    if (sounds == Sounds::Both) {
        writeTone(microphone, 1, 440, into(muxer, microphoneTrack));
        writeTone(system, 2, 660, into(muxer, systemTrack));
    }
    muxer.finish(std::chrono::seconds(exportClipSeconds));
}

} // namespace vantry::bench
