#include "Figure.h"
#include "ProcessorTime.h"
#include "RecordScene.h"
#include "WarmRecorder.h"

#include "capture/ClipSettings.h"
#include "support/Command.h"
#include "support/MovieProbe.h"
#include "support/TemporaryFolder.h"

#include <cmath>
#include <cstdlib>
#include <sys/stat.h>
#include <thread>

namespace vantry::bench {

namespace {

constexpr int length = 60; // seconds
constexpr int cores = 2;
constexpr const char* microphone = "test-microphone"; // Of the private desktop; it hears a tone.

/// Of a picture track, how much is missing of 30 pictures in every second, for whatever reason.
double missedPictures(const std::filesystem::path& clip, const std::string& stream)
{
    const auto count = std::stoi(test::probeStream(clip, stream).at("nb_frames"));
    return 100 * (1 - static_cast<double>(count) / (length * framesPerSecond));
}

/// Of a sound track with a tone in it, how much is silence: stretches that the media server left out.
double missedSound(const std::filesystem::path& clip, const std::string& stream)
{
    constexpr std::size_t piece = 480;
    constexpr float quiet = 0.05f;
    const auto samples = test::probeSound(clip, stream);
    std::size_t silent = 0;
    for (std::size_t first = 0; first + piece <= samples.size(); first += piece) {
        const auto isQuiet = [](float sample) { return std::abs(sample) < quiet; };
        silent += std::all_of(&samples[first], &samples[first] + piece, isQuiet);
    }
    return 100.0 * static_cast<double>(silent * piece) / static_cast<double>(std::max<std::size_t>(samples.size(), 1));
}

double missedPictures(const std::filesystem::path& clip)
{
    return std::max(missedPictures(clip, "v:0"), missedPictures(clip, "v:1"));
}

std::string number(int value)
{
    return std::to_string(value);
}

/// The encoder of a picture track as a clip has it, for the command line.
std::string encoderOptions(int track, const VideoEncoderSettings& settings)
{
    const bool isHevc = settings.codec == VideoCodec::Hevc;
    const auto option = [of = ":v:" + number(track) + " "](
                            const std::string& name, const std::string& value) { return " -" + name + of + value; };
    std::string options = option("c", isHevc ? "libx265 -tag:v:0 hvc1" : "libx264") + option("preset", settings.preset)
        + option("b", number(settings.bitRate)) + option("g", number(settings.gop)) + option("bf", number(settings.bFrames))
        + option("forced-idr", "1") + option("force_key_frames", "'expr:gte(t,n_forced)'") + option("pix_fmt", "yuv420p");
    if (isHevc)
        return options + option("x265-params", "log-level=error:open-gop=0:" + settings.parameters);
    return options + option("profile", "high") + option("x264-params", settings.parameters)
        + option("threads", number(settings.threads));
}

std::string encoderOptions(int track, const AudioEncoderSettings& settings)
{
    const auto of = ":a:" + number(track) + " ";
    return " -c" + of + "aac -b" + of + number(settings.bitRate) + " -ac" + of + number(settings.channels);
}

/// The same sources, encoded in the same way. It cannot look through the media server's cameras, so another process, which does not
/// count, hands it the frames.
std::string commandLine(const std::filesystem::path& frames, const std::filesystem::path& clip)
{
    const std::string queue = " -thread_queue_size 512 ";
    const PictureSize screen{ 1920, 1080 }, camera{ RecordScene::cameraWidth, RecordScene::cameraHeight };
    const auto size = [](PictureSize of) { return number(of.width) + "x" + number(of.height); };
    return "ffmpeg -nostdin -y -loglevel error" + queue + "-f x11grab -framerate 30 -video_size " + size(screen) + " -i "
        + std::getenv("DISPLAY") + queue
        + "-use_wallclock_as_timestamps 1 -f rawvideo -pixel_format yuyv422 -framerate 30 -video_size " + size(camera) + " -i "
        + frames.string() + queue + "-f pulse -i " + microphone + queue + "-f pulse -i test-sink.monitor"
        + " -map 0:v -map 1:v -map 2:a -map 3:a" + encoderOptions(0, clip::screenSettings(screen))
        + encoderOptions(1, clip::cameraSettings(camera)) + encoderOptions(0, clip::microphoneSettings)
        + encoderOptions(1, clip::systemSoundSettings) + " -ar 48000 -t " + number(length) + " " + clip.string();
}

class RecordBench {
public:
    void measure();

private:
    void measureRecording();
    void measureCommandLine();
    void measureStart();
    void measureIdle();

    const test::TemporaryFolder m_folder;
    const std::filesystem::path m_clip = m_folder / "clip.mov";
};

void RecordBench::measureRecording()
{
    const RecordScene scene;
    const auto figures = recordOnce(m_clip, length, microphone, scene.camera());
    report("record.dropped_pct", figures.droppedPercent, "%");
    report("record.missed_pct", missedPictures(m_clip), "%");
    report("record.missed_sound_pct", std::max(missedSound(m_clip, "a:0"), missedSound(m_clip, "a:1")), "%");
    report("record.cpu_pct", figures.processorPercent / cores, "%");
}

void RecordBench::measureCommandLine()
{
    const RecordScene scene;
    const auto frames = m_folder / "frames";
    mkfifo(frames.c_str(), 0600);
    const test::Program reader({ BENCH_TOOLS "/vantry_camera_frames", scene.camera(), frames });
    const double before = processorSeconds(RUSAGE_CHILDREN);
    const auto start = HostClock::now();
    test::runCommand(commandLine(frames, m_clip));
    const double spent = processorSeconds(RUSAGE_CHILDREN) - before;
    report("record.ffmpeg_cpu_pct", 100 * spent / seconds(HostClock::now() - start) / cores, "%");
    report("record.ffmpeg_missed_pct", missedPictures(m_clip), "%");
}

/// The worst of several.
void RecordBench::measureStart()
{
    const RecordScene scene;
    constexpr int clips = 10;
    WarmRecorder recorder(microphone, scene.camera());
    HostDuration worst{};
    for (int i = 0; i < clips; ++i)
        worst = std::max(worst, recorder.record(m_clip, std::chrono::seconds(1)).start);
    report("record.start_ms", seconds(worst) * 1000, "ms");
}

/// A still screen, nobody speaks, nothing plays; of one core.
void RecordBench::measureIdle()
{
    const ClickMicrophone quiet;
    report("record.idle_screen_cpu_pct", recordOnce(m_clip, length, quiet.name(), {}).processorPercent, "%");
}

/// Each with a camera of its own: one that changes hands within a moment brings no pictures any more, now and then.
void RecordBench::measure()
{
    measureRecording();
    measureCommandLine();
    measureStart();
    measureIdle();
}

const FigureGroup group("record", [] { RecordBench().measure(); });

} // namespace

} // namespace vantry::bench
