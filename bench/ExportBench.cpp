#include "ExportClip.h"
#include "ExportMaterial.h"
#include "Figure.h"
#include "ProcessorTime.h"

#include "render/Compositor.h"
#include "render/Exporter.h"
#include "render/TrackPictures.h"
#include "render/Video.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace vantry::bench {

namespace {

constexpr int height = 1080;
constexpr int rounds = 5;

/// What an action took: by the clock on the wall, and by the processor.
struct Cost {
    double seconds = 0;
    double cpuSeconds = 0;
};

template <typename Action>
Cost costOf(const Action& action)
{
    const auto start = std::chrono::steady_clock::now();
    const double cpuStart = processorSeconds();
    action();
    return { std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), processorSeconds() - cpuStart };
}

double median(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

class ExportBench {
public:
    ExportBench()
        : m_project(exportBenchProject(1))
        , m_images(exportBenchImages(m_project))
    {
        writeExportClip(file("clip-1.mov"), Sounds::None);
    }

    void measure();

private:
    void measureMemory() const;
    void measureAgainstLimit() const;
    void measureAgainstFiltergraph() const;
    void measureBlur() const;

    Cost exportAll(const Project& project) const;
    Cost limit(const std::vector<Picture>& frames) const;
    Cost filtergraph() const;
    std::vector<Picture> composeFrames(const Project& project) const;
    std::string filtergraphCommand() const;

    std::filesystem::path file(const std::string& name) const { return m_folder.path() / name; }

    test::TemporaryFolder m_folder;
    Project m_project;
    OverlayImages m_images;
};

/// The most memory that a process of its own needs for the project `repeats` times over, in MB. The process says it itself: what
/// the system counts for a child begins with the memory of the parent that it was forked from.
double peakMegabytes(const std::filesystem::path& folder, int repeats)
{
    const auto program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "vantry_export_once";
    const auto command =
        program.string() + " " + folder.string() + " " + std::to_string(repeats) + " " + (folder / "once.mp4").string();
    const std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
    double kilobytes = 0;
    if (!output || std::fscanf(output.get(), "%lf", &kilobytes) != 1)
        throw std::runtime_error("The export in a process of its own failed");
    return kilobytes / 1024;
}

void ExportBench::measureMemory() const
{
    const double peak = peakMegabytes(m_folder.path(), 1);
    report("export.peak_mb", peak, "MB");
    report("export.peak_long_ratio", peakMegabytes(m_folder.path(), 10) / peak, "x");
}

Cost ExportBench::exportAll(const Project& project) const
{
    return costOf([&] {
        Video::exportProject({ .project = project,
            .folder = m_folder.path(),
            .destination = file("export.mp4"),
            .height = height,
            .images = m_images });
    });
}

/// The frames that the export encodes, kept in memory.
std::vector<Picture> ExportBench::composeFrames(const Project& project) const
{
    const auto plan = Video::build(project, m_folder.path(), exportSize(height));
    const auto instruction = std::make_shared<const RenderInstruction>(
        RenderInstruction{ .duration = plan.duration, .project = project, .images = m_images });
    Compositor compositor(instruction, plan.size.width, plan.size.height);
    TrackPictures screen(plan.segmentsOf(TrackKind::screen), {}), camera(plan.segmentsOf(TrackKind::camera), {});
    std::vector<Picture> frames;
    for (std::int64_t i = 0; i < plan.frameCount(); ++i)
        frames.push_back(compositor.compose(i * frameDuration, screen.at(i * frameDuration), camera.at(i * frameDuration)));
    return frames;
}

/// What no export can do without: decoding both tracks and encoding the frames, all at once.
Cost ExportBench::limit(const std::vector<Picture>& frames) const
{
    return costOf([&] {
        const auto decode = [&](int track) {
            VideoReader reader(file("clip-1.mov"), track);
            while (reader.next()) { }
        };
        std::jthread screen(decode, 0), camera(decode, 1);
        VideoEncoder encoder(exportSettings(exportSize(height)));
        const PacketSink discard = [](const Packet&) {};
        for (std::size_t i = 0; i < frames.size(); ++i)
            encoder.encode(frames[i], static_cast<std::int64_t>(i) * frameDuration, PictureKind::Any, discard);
        encoder.finish(discard);
    });
}

/// How much of a pixel lies within a circle around the middle of a square of `size`.
double discCoverage(int x, int y, int size, double radius)
{
    return std::clamp(radius + 0.5 - std::hypot(x + 0.5 - size / 2.0, y + 0.5 - size / 2.0), 0.0, 1.0);
}

/// A white disc on black, as large as the bubble.
void writeMask(const std::filesystem::path& file, int size)
{
    std::ofstream mask(file, std::ios::binary);
    mask << "P5 " << size << ' ' << size << " 255\n";
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            mask.put(static_cast<char>(std::lround(255 * discCoverage(x, y, size, size / 2.0))));
}

/// The white ring around a disc of `inner`, as BGRA.
void writeRing(const std::filesystem::path& file, int size, int inner)
{
    std::ofstream ring(file, std::ios::binary);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double alpha = discCoverage(x, y, size, size / 2.0) - discCoverage(x, y, size, inner / 2.0);
            ring << "\xff\xff\xff" << static_cast<char>(std::lround(255 * alpha));
        }
}

void writeBitmap(const std::filesystem::path& file, const Bitmap& bitmap)
{
    std::ofstream raw(file, std::ios::binary);
    for (int y = 0; y < bitmap.height(); ++y)
        raw.write(reinterpret_cast<const char*>(bitmap.row(y)), bitmap.width() * 4);
}

/// An input of raw pixels.
std::string rawInput(const std::filesystem::path& file, int width, int height)
{
    return " -f rawvideo -pixel_format bgra -framerate 30 -video_size " + std::to_string(width) + "x" + std::to_string(height)
        + " -i " + file.string();
}

/// The same picture but for the 0.4 s in which the camera grows and shrinks: here it jumps. The camera's two full-frame seconds are
/// an input of their own, so that only they are scaled to the frame, and the overlay's six seconds, so that only they are faded.
std::string ExportBench::filtergraphCommand() const
{
    constexpr int bubble = 280, ringWidth = 6, ring = bubble + 2 * ringWidth, margin = 43;
    writeMask(file("mask.pgm"), bubble);
    writeRing(file("ring.bgra"), ring, bubble);
    const auto& bitmap = m_images.begin()->second;
    writeBitmap(file("overlay.bgra"), bitmap);

    const auto number = [](auto value) { return std::to_string(value); };
    const auto between = [&](double from, double to) { return ":enable='between(t," + number(from) + "," + number(to) + ")'"; };
    const std::string withBubble = ":enable='not(between(t," + number(cameraFullFrom) + "," + number(cameraFullTo) + "))'";
    const auto corner = [&](int distance) { return "overlay=W-w-" + number(distance) + ":H-h-" + number(distance); };

    const std::string clip = file("clip-1.mov"), side = number(bubble);
    const std::string inputs = " -i " + clip + " -itsoffset " + number(cameraFullFrom) + " -ss " + number(cameraFullFrom) + " -t "
        + number(cameraFullTo - cameraFullFrom) + " -i " + clip + " -i " + file("mask.pgm").string()
        + rawInput(file("ring.bgra"), ring, ring) + " -itsoffset " + number(overlayFrom) + " -stream_loop -1 -t "
        + number(overlayTo - overlayFrom) + rawInput(file("overlay.bgra"), bitmap.width(), bitmap.height());

    const std::string crop = "crop=" + number(cropWidth) + ":" + number(cropHeight) + ":" + number(cropX) + ":" + number(cropY);
    const std::string graph = "[0:v:0]fps=30," + crop + ",scale=1920:1080[screen];[2:v]format=gray[mask];"
        + "[0:v:1]crop=720:720,scale=" + side + ":" + side + ",format=yuva420p[square];[square][mask]alphamerge[round];"
        + "[3:v]format=yuva420p[ring];[screen][ring]" + corner(margin - ringWidth) + withBubble + "[ringed];[ringed][round]"
        + corner(margin) + withBubble + "[bubble];[1:v:1]scale=1920:1080[full];[bubble][full]overlay=0:0:eof_action=pass"
        + between(cameraFullFrom, cameraFullTo) + "[both];[4:v]scale=768:-2,format=yuva420p,fade=in:st=" + number(overlayFrom)
        + ":d=0.25:alpha=1,fade=out:st=" + number(overlayTo - 0.3) + ":d=0.3:alpha=1[card];[both][card]overlay=W*"
        + number(overlayX) + "-w/2:H*" + number(overlayY) + "-h/2:eof_action=pass" + between(overlayFrom, overlayTo)
        + ",format=yuv420p[out]";

    const auto settings = exportSettings(exportSize(height));
    return "ffmpeg -v error -nostdin -y" + inputs + " -filter_complex \"" + graph + "\" -map [out] -c:v libx264 -preset "
        + settings.preset + " -crf " + number(settings.constantQuality) + " -g " + number(settings.gop) + " -keyint_min "
        + number(settings.gop) + " -sc_threshold 0 -bf " + number(settings.bFrames) + " -r 30 -movflags +faststart "
        + file("graph.mp4").string();
}

Cost ExportBench::filtergraph() const
{
    const auto command = filtergraphCommand();
    return costOf([&] {
        if (std::system(command.c_str()) != 0)
            throw std::runtime_error("The filter graph failed: " + command);
    });
}

/// The whole screen, pixel by pixel: what is left is decoding and encoding.
void ExportBench::measureAgainstLimit() const
{
    Project whole = m_project;
    whole.screenCrop.reset();
    const auto frames = composeFrames(whole);
    std::vector<double> fps, ofLimit, ofLimitsCpu;
    for (int round = 0; round < rounds; ++round) {
        const auto exported = exportAll(whole);
        const auto least = limit(frames);
        fps.push_back(static_cast<double>(frames.size()) / exported.seconds);
        ofLimit.push_back(least.seconds / exported.seconds);
        ofLimitsCpu.push_back(least.cpuSeconds / exported.cpuSeconds);
    }
    report("export.fps", median(fps), "frames/s");
    report("export.vs_limit", median(ofLimit), "x");
    report("export.cpu_vs_limit", median(ofLimitsCpu), "x");
}

/// A part of the screen, which fills the frame: both have to crop and scale.
void ExportBench::measureAgainstFiltergraph() const
{
    std::vector<double> ofGraph;
    for (int round = 0; round < rounds; ++round) {
        const auto exported = exportAll(m_project);
        ofGraph.push_back(filtergraph().seconds / exported.seconds);
    }
    report("export.vs_filtergraph", median(ofGraph), "x");
}

void ExportBench::measureBlur() const
{
    Project blurred = m_project;
    blurred.blurBackground = true;
    std::vector<double> ofPlain;
    for (int round = 0; round < rounds; ++round) {
        const auto plain = exportAll(m_project);
        ofPlain.push_back(plain.seconds / exportAll(blurred).seconds);
    }
    report("export.blur_vs_plain", median(ofPlain), "x");
}

void ExportBench::measure()
{
    measureAgainstLimit();
    measureAgainstFiltergraph();
    measureBlur();
    measureMemory();
}

const FigureGroup group("export", [] { ExportBench().measure(); });

} // namespace

} // namespace vantry::bench
