#include "TestClip.h"

#include "media/AudioEncoder.h"
#include "media/Muxer.h"
#include "media/VideoEncoder.h"

#include <algorithm>
#include <list>

namespace vantry::test {

namespace {

constexpr int width = 320;
constexpr int height = 180;
constexpr int samplesPerFrame = sampleRate / framesPerSecond;

} // namespace

void writeClip(const std::filesystem::path& file, const TestClip& clip)
{
    Muxer muxer(file, MovieFormat::Clip);
    std::list<VideoEncoder> videos;
    std::list<AudioEncoder> sounds;
    std::vector<std::function<void()>> writers; // Of each track, once the movie has all of them.
    const auto addTrack = [&](const auto& encoder) -> PacketSink {
        return [&muxer, track = muxer.addTrack(encoder)](Packet packet) { muxer.write(track, std::move(packet)); };
    };

    const auto addPictures = [&](VideoCodec codec, const auto& grey, int begin, int end) {
        if (!grey)
            return;
        auto& encoder = videos.emplace_back(VideoEncoderSettings{ .codec = codec,
            .width = width,
            .height = height,
            .timescale = 90000,
            .bitRate = 4'000'000,
            .gop = 10,
            .preset = "ultrafast" });
        writers.emplace_back([=, &encoder, sink = addTrack(encoder)] {
            for (int frame = begin; frame < end; ++frame) {
                PictureBuffer buffer(width, height);
                buffer.fill(grey(frame), 128, 128);
                encoder.encode(std::move(buffer).share(), frame * frameDuration, PictureKind::Any, sink);
            }
            encoder.finish(sink);
        });
    };
    addPictures(VideoCodec::Hevc, clip.screen, 0, clip.frames);
    addPictures(VideoCodec::H264, clip.camera, clip.cameraStart, std::min(clip.cameraEnd, clip.frames));

    const auto addSound = [&](int channels, const auto& level) {
        if (!level)
            return;
        auto& encoder = sounds.emplace_back(AudioEncoderSettings{ .channels = channels, .bitRate = 96'000 * channels });
        writers.emplace_back([=, &encoder, sink = addTrack(encoder), length = clip.frames * samplesPerFrame] {
            Sound sound{ .channels = channels, .samples = {} };
            for (int sample = 0; sample < length; ++sample)
                sound.samples.insert(sound.samples.end(), static_cast<std::size_t>(channels), level(sample));
            encoder.encode(sound, sink);
            encoder.finish(sink);
        });
    };
    addSound(1, clip.microphone);
    addSound(2, clip.system);

    muxer.start();
    for (const auto& write : writers)
        write();
    muxer.finish(clip.frames * frameDuration);
}

} // namespace vantry::test
