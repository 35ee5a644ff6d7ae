#include "DroppedPercent.h"
#include "Figure.h"
#include "ProcessorTime.h"

#include "ScreenContent.h"
#include "capture/ClipWriter.h"
#include "support/FinishedClip.h"
#include "support/TemporaryFolder.h"

#include <random>
#include <stdexcept>
#include <thread>

namespace vantry::bench {

namespace {

using namespace test;

constexpr PictureSize screen{ 1920, 1080 };
constexpr PictureSize camera{ 1280, 720 };
constexpr std::chrono::seconds length(20);
constexpr int pieceFrames = 1024;

/// Ready-made pictures, shown forwards and backwards, so that making them costs nothing while it counts and nothing ever jumps.
class Reel {
public:
    Reel(PictureSize size, Activity activity, int pictures)
    {
        ScreenContent content(size.width, size.height, activity);
        for (int i = 0; i < pictures; ++i)
            m_pictures.push_back(content.picture(i));
    }

    const Picture& at(std::size_t number) const
    {
        const auto last = m_pictures.size() - 1;
        const auto step = number % (2 * last);
        return m_pictures[step <= last ? step : 2 * last - step];
    }

private:
    std::vector<Picture> m_pictures;
};

/// A tone with some noise.
Sound piece(int channels)
{
    Sound sound{ .channels = channels, .samples = {} };
    std::mt19937 random(1);
    std::uniform_real_distribution<float> noise(-0.1f, 0.1f);
    for (int i = 0; i < pieceFrames; ++i)
        for (int channel = 0; channel < channels; ++channel)
            sound.samples.push_back(0.3f * std::sin(static_cast<float>(i) * 0.0576f) + noise(random));
    return sound;
}

struct Result {
    ClipOutcome outcome;
    double processorPercent = 0; ///< 100 is one core.
};

/// Everything comes when it would come from a screen, a camera and a sound server.
Result record(const Reel& screenReel, const Reel& cameraReel)
{
    const TemporaryFolder folder;
    const auto start = HostClock::now();
    const auto before = processorSeconds();
    ClipWriter writer(folder / "clip.mov", { .screen = screen, .camera = camera, .audio = true, .system = true }, start);
    const Sound microphone = piece(1);
    const Sound system = piece(2);
    const auto pictureTime = [&](std::size_t i) {
        return start + std::chrono::round<HostDuration>(static_cast<int>(i) * frameDuration);
    };
    const auto soundTime = [&](std::size_t i) {
        return start + std::chrono::round<HostDuration>(SampleCount(static_cast<std::int64_t>(i) * pieceFrames));
    };
    for (std::size_t pictures = 0, sounds = 0; HostClock::now() < start + length;) {
        if (pictureTime(pictures) <= soundTime(sounds)) {
            std::this_thread::sleep_until(pictureTime(pictures));
            writer.append(PictureSample{ screenReel.at(pictures), pictureTime(pictures) }, TrackKind::screen);
            writer.append(PictureSample{ cameraReel.at(pictures), pictureTime(pictures) }, TrackKind::camera);
            ++pictures;
        } else {
            std::this_thread::sleep_until(soundTime(sounds));
            writer.append(SoundSample{ microphone, soundTime(sounds) }, TrackKind::audio);
            writer.append(SoundSample{ system, soundTime(sounds) }, TrackKind::system);
            ++sounds;
        }
    }
    const auto end = HostClock::now();
    Result result{ .outcome = finishedClip(writer, end) };
    if (!result.outcome.duration)
        throw std::runtime_error(result.outcome.problem);
    result.processorPercent = 100 * (processorSeconds() - before) / seconds(end - start);
    return result;
}

/// The limit holds for the harder content, on which every pixel moves; an editor beside a scrolling log is what it mostly is.
void measure()
{
    const Reel cameraReel(camera, Activity::Motion, 30);
    const auto typing = record(Reel(screen, Activity::Typing, 60), cameraReel);
    report("writer.typing_dropped_pct", droppedPercent(typing.outcome), "%");
    report("writer.typing_cpu_pct", typing.processorPercent, "%");
    const auto motion = record(Reel(screen, Activity::Motion, 60), cameraReel);
    report("writer.dropped_pct", droppedPercent(motion.outcome), "%");
    report("writer.cpu_pct", motion.processorPercent, "%");
}

const FigureGroup group("writer", measure);

} // namespace

} // namespace vantry::bench
