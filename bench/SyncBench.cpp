#include "Figure.h"
#include "RecordScene.h"

#include "render/Exporter.h"
#include "support/FlashAndClick.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

namespace vantry::bench {

namespace {

constexpr int events = 60;
constexpr int length = events + 2; // seconds: an event may lie too close to either end.
/// How much later than its flash each click is, in milliseconds.
std::vector<double> offsets(const std::filesystem::path& movie, const std::string& pictures, int channels)
{
    std::vector<double> found = test::clicksAfterFlashes(movie, pictures, channels);
    found.resize(std::min<std::size_t>(found.size(), events));
    // A busy machine loses a frame or a stretch of sound now and then.
    if (found.size() < events * 9 / 10)
        throw std::runtime_error("Only " + std::to_string(found.size()) + " flashes with a click");
    for (double& offset : found)
        offset *= 1000;
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
