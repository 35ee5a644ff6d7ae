#include "ExportClip.h"
#include "ExportMaterial.h"
#include "Figure.h"

#include "render/Compositor.h"
#include "render/Exporter.h"
#include "render/TrackPictures.h"
#include "render/Video.h"
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace vantry::bench {

namespace {

constexpr int height = 1080;
constexpr int rounds = 3;

/// What an action took: by the clock on the wall, and by the processor.
struct Cost {
    double seconds = 0;
    double cpuSeconds = 0;
};

double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto of = [](const timeval& time) { return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6; };
    return of(usage.ru_utime) + of(usage.ru_stime);
}

template <typename Action>
Cost costOf(const Action& action)
{
    const auto start = std::chrono::steady_clock::now();
    const double cpuStart = cpuSeconds();
    action();
    return { std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(), cpuSeconds() - cpuStart };
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
        writeExportClip(file("clip-1.mov"));
    }

    void measure();

private:
    void measureMemory() const;
    void measureSpeed() const;

    Cost exportAll() const;
    Cost limit(const std::vector<Picture>& frames) const;
    Cost filtergraph() const;
    std::vector<Picture> composeFrames() const;
    std::string filtergraphCommand() const;

    std::filesystem::path file(const std::string& name) const { return m_folder.path() / name; }

    test::TemporaryFolder m_folder;
    Project m_project;
    OverlayImages m_images;
};

/// The most memory that a process of its own needs for the project `repeats` times over, in MB.
double peakMegabytes(const std::filesystem::path& folder, int repeats)
{
    const auto program = std::filesystem::read_symlink("/proc/self/exe").parent_path() / "vantry_export_once";
    const auto destination = folder / "once.mp4";
    const auto times = std::to_string(repeats);
    const pid_t child = fork();
    if (child == 0) {
        execl(program.c_str(), program.c_str(), folder.c_str(), times.c_str(), destination.c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    rusage usage{};
    if (wait4(child, &status, 0, &usage) != child || status != 0)
        throw std::runtime_error("The export in a process of its own failed");
    return static_cast<double>(usage.ru_maxrss) / 1024;
}

void ExportBench::measureMemory() const
{
    const double peak = peakMegabytes(m_folder.path(), 1);
    report("export.peak_mb", peak, "MB");
    report("export.peak_long_ratio", peakMegabytes(m_folder.path(), 10) / peak, "x");
}

Cost ExportBench::exportAll() const
{
    return costOf([&] {
        Video::exportProject({ .project = m_project,
            .folder = m_folder.path(),
            .destination = file("export.mp4"),
            .height = height,
            .images = m_images });
    });
}

/// The frames that the export encodes, kept in memory.
std::vector<Picture> ExportBench::composeFrames() const
{
    const auto plan = Video::build(m_project, m_folder.path(), exportSize(height));
    const auto instruction = std::make_shared<const RenderInstruction>(
        RenderInstruction{ .duration = plan.duration, .project = m_project, .images = m_images });
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
            VideoReader reader(file("clip-1.mov"), track, {});
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

/// A white disc on black, as large as the bubble.
void writeMask(const std::filesystem::path& file, int size)
{
    std::ofstream mask(file, std::ios::binary);
    mask << "P5 " << size << ' ' << size << " 255\n";
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x)
            mask.put(std::hypot(x + 0.5 - size / 2.0, y + 0.5 - size / 2.0) <= size / 2.0 ? '\xff' : '\0');
}

void writeBitmap(const std::filesystem::path& file, const Bitmap& bitmap)
{
    std::ofstream raw(file, std::ios::binary);
    for (int y = 0; y < bitmap.height(); ++y)
        raw.write(reinterpret_cast<const char*>(bitmap.row(y)), bitmap.width() * 4);
}

/// The same picture without the bubble's ring and shadow and without any animation, which is less than we draw. The camera's two
/// full-frame seconds are an input of their own, so that only they are scaled.
std::string ExportBench::filtergraphCommand() const
{
    constexpr int bubble = 280, margin = 43;
    writeMask(file("mask.pgm"), bubble);
    const auto& bitmap = m_images.begin()->second;
    writeBitmap(file("overlay.bgra"), bitmap);
    const auto between = [](double from, double to) {
        return ":enable='between(t," + std::to_string(from) + "," + std::to_string(to) + ")'";
    };
    const std::string clip = file("clip-1.mov"), from = std::to_string(cameraFullFrom);
    const std::string side = std::to_string(bubble), edge = std::to_string(margin);
    const auto settings = exportSettings(exportSize(height));
    return "ffmpeg -v error -nostdin -y -i " + clip + " -itsoffset " + from + " -ss " + from + " -t "
        + std::to_string(cameraFullTo - cameraFullFrom) + " -i " + clip + " -i " + file("mask.pgm").string()
        + " -f rawvideo -pixel_format bgra -video_size " + std::to_string(bitmap.width()) + "x" + std::to_string(bitmap.height())
        + " -i " + file("overlay.bgra").string()
        + " -filter_complex \"[0:v:0]fps=30,scale=1920:1080[screen];[2:v]format=gray[mask];" + "[0:v:1]crop=720:720,scale=" + side
        + ":" + side + ",format=yuva420p[square];[square][mask]alphamerge[round];" + "[screen][round]overlay=W-w-" + edge + ":H-h-"
        + edge + between(0, cameraFullFrom) + "[bubble];" + "[1:v:1]scale=1920:1080[full];[bubble][full]overlay=0:0:eof_action=pass"
        + between(cameraFullFrom, cameraFullTo) + "[both];" + "[3:v]scale=768:-2,format=yuva420p[card];[both][card]overlay=W*"
        + std::to_string(overlayX) + "-w/2:H*" + std::to_string(overlayY) + "-h/2" + between(overlayFrom, overlayTo)
        + ",format=yuv420p[out]\" -map [out] -c:v libx264 -preset " + settings.preset + " -crf "
        + std::to_string(settings.constantQuality) + " -g " + std::to_string(settings.gop) + " -keyint_min "
        + std::to_string(settings.gop) + " -sc_threshold 0 -bf " + std::to_string(settings.bFrames) + " -r 30 -movflags +faststart "
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

void ExportBench::measureSpeed() const
{
    const auto frames = composeFrames();
    const auto count = static_cast<double>(frames.size());
    std::vector<double> fps, ofLimit, ofLimitsCpu, ofGraph;
    for (int round = 0; round < rounds; ++round) {
        const auto exported = exportAll();
        const auto least = limit(frames);
        fps.push_back(count / exported.seconds);
        ofLimit.push_back(least.seconds / exported.seconds);
        ofLimitsCpu.push_back(least.cpuSeconds / exported.cpuSeconds);
        ofGraph.push_back(filtergraph().seconds / exported.seconds);
    }
    report("export.fps", median(fps), "frames/s");
    report("export.vs_limit", median(ofLimit), "x");
    report("export.cpu_vs_limit", median(ofLimitsCpu), "x");
    report("export.vs_filtergraph", median(ofGraph), "x");
}

void ExportBench::measure()
{
    measureSpeed();
    measureMemory();
}

const FigureGroup group("export", [] { ExportBench().measure(); });

} // namespace

} // namespace vantry::bench
