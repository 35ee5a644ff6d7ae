#include "Figure.h"
#include "RecordScene.h"

#include "render/Exporter.h"
#include "support/MovieProbe.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

namespace vantry::bench {

namespace {

constexpr int events = 60;
constexpr int length = events + 2; // seconds: an event may lie too close to either end.
constexpr double rate = 48000;

/// When the picture begins to be white, in seconds.
std::vector<double> flashes(const std::filesystem::path& movie, const std::string& stream)
{
    constexpr int white = 180;
    std::vector<double> times;
    int before = 255;
    for (const auto& frame : test::probeFrames(movie, stream)) {
        if (frame.luma > white && before <= white)
            times.push_back(frame.time);
        before = frame.luma;
    }
    return times;
}

/// The click that is less than half a second from `time`, in seconds; nothing when it was lost or may lie outside.
std::optional<double> clickNear(double time, const std::vector<float>& samples, int channels)
{
    constexpr float quiet = 0.2f;
    const auto first = std::lround((time - 0.5) * rate) * channels;
    const auto last = first + static_cast<long>(rate) * channels;
    if (first < 0 || last > std::ssize(samples))
        return std::nullopt;
    const auto loudest = std::max_element(
        samples.begin() + first, samples.begin() + last, [](float one, float other) { return std::abs(one) < std::abs(other); });
    if (std::abs(*loudest) < quiet)
        return std::nullopt;
    const auto frame = (loudest - samples.begin()) / channels;
    return static_cast<double>(frame) / rate;
}

/// How much later than its flash each click is, in milliseconds.
std::vector<double> offsets(const std::filesystem::path& movie, const std::string& pictures, int channels)
{
    const auto samples = test::probeSound(movie, "a:0");
    std::vector<double> found;
    for (const double flash : flashes(movie, pictures))
        if (const auto click = clickNear(flash, samples, channels); click && std::ssize(found) < events)
            found.push_back((*click - flash) * 1000);
    // A busy machine loses a frame or a stretch of sound now and then.
    if (found.size() < events * 9 / 10)
        throw std::runtime_error("Only " + std::to_string(found.size()) + " flashes with a click");
    return found;
}

double mean(const std::vector<double>& values)
{
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

/// The value that 95 of 100 do not exceed, whatever their sign.
double p95(std::vector<double> values)
{
    for (auto& value : values)
        value = std::abs(value);
    std::ranges::sort(values);
    return values[(values.size() * 95 + 99) / 100 - 1];
}

/// The clip alone, its camera over the whole frame, its first sound the microphone's.
void exportCamera(const std::filesystem::path& clip, const std::filesystem::path& destination)
{
    Project project;
    project.layouts = { { 0, Layout::camera, Corner::bottomRight } };
    project.clips.push_back({ .file = clip.filename(), .duration = length, .keep = length, .transcript = {} });
    Video::exportProject(
        { .project = project, .folder = clip.parent_path(), .destination = destination, .height = RecordScene::cameraHeight });
}

/// A flash of the camera and a click of the microphone at each second, beside a busy screen. A video's pictures are at whole
/// thirtieths of a second, so there a flash is up to one of them late.
void measure()
{
    const test::TemporaryFolder folder;
    const auto clip = folder / "clip.mov";
    const auto video = folder / "video.mp4";
    {
        const RecordScene scene(RecordScene::Flashes::WholeSeconds);
        const ClickMicrophone microphone;
        recordOnce(clip, length, microphone.name(), scene.camera());
    }
    const auto recorded = offsets(clip, "v:1", 1);
    report("sync.offset_ms", mean(recorded), "ms");
    report("sync.p95_ms", p95(recorded), "ms");
    exportCamera(clip, video);
    report("sync.export_offset_ms", mean(offsets(video, "v:0", 2)), "ms");
}

const FigureGroup group("sync", measure);

} // namespace

} // namespace vantry::bench
