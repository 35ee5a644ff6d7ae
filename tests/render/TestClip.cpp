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

class ClipFile {
public:
    explicit ClipFile(const std::filesystem::path& file)
        : m_muxer(file, MovieFormat::Clip)
    {
    }

    void addPictures(VideoCodec codec, const std::function<std::uint8_t(int)>& grey, int begin, int end)
    {
        auto& encoder = m_videos.emplace_back(VideoEncoderSettings{ .codec = codec,
            .width = width,
            .height = height,
            .timescale = 90000,
            .bitRate = 4'000'000,
            .gop = 10,
            .preset = "ultrafast" });
        const auto sink = track(m_muxer.addTrack(encoder));
        m_writers.emplace_back([=, &encoder] {
            for (int frame = begin; frame < end; ++frame) {
                PictureBuffer buffer(width, height);
                buffer.fill(grey(frame), 128, 128);
                encoder.encode(std::move(buffer).share(), frame * frameDuration, PictureKind::Any, sink);
            }
            encoder.finish(sink);
        });
    }

    void addSound(int channels, const std::function<float(int)>& level, int frames)
    {
        auto& encoder = m_sounds.emplace_back(AudioEncoderSettings{ .channels = channels, .bitRate = 96'000 * channels });
        const auto sink = track(m_muxer.addTrack(encoder));
        m_writers.emplace_back([=, &encoder] {
            Sound sound{ .channels = channels, .samples = {} };
            for (int sample = 0; sample < frames * samplesPerFrame; ++sample)
                sound.samples.insert(sound.samples.end(), static_cast<std::size_t>(channels), level(sample));
            encoder.encode(sound, sink);
            encoder.finish(sink);
        });
    }

    void write(MediaTime end)
    {
        m_muxer.start();
        for (const auto& writer : m_writers)
            writer();
        m_muxer.finish(end);
    }

private:
    PacketSink track(int index)
    {
        return [this, index](Packet packet) { m_muxer.write(index, std::move(packet)); };
    }

    Muxer m_muxer;
    std::list<VideoEncoder> m_videos;
    std::list<AudioEncoder> m_sounds;
    std::list<std::function<void()>> m_writers;
};

} // namespace

void writeClip(const std::filesystem::path& file, const TestClip& clip)
{
    ClipFile movie(file);
    if (clip.screen)
        movie.addPictures(VideoCodec::Hevc, clip.screen, 0, clip.frames);
    if (clip.camera)
        movie.addPictures(VideoCodec::H264, clip.camera, clip.cameraStart, std::min(clip.cameraEnd, clip.frames));
    if (clip.microphone)
        movie.addSound(1, clip.microphone, clip.frames);
    if (clip.system)
        movie.addSound(2, clip.system, clip.frames);
    movie.write(clip.frames * frameDuration);
}

} // namespace vantry::test
