#include "render/Exporter.h"

#include "base/AppError.h"
#include "render/ExportRun.h"
#include "render/PendingFile.h"
#include "render/Video.h"

namespace vantry {

PictureSize exportSize(int height)
{
    if (height < 2 || height % 2 != 0)
        throw AppError("A video cannot be " + std::to_string(height) + " pixels high");
    return { 16 * height / 9 / 2 * 2, height };
}

VideoEncoderSettings exportSettings(PictureSize size)
{
    return {
        .codec = VideoCodec::H264,
        .width = size.width,
        .height = size.height,
        .frameRate = framesPerSecond,
        .constantQuality = 20,
        .gop = framesPerSecond / 2,
        .bFrames = 2,
        .preset = "veryfast",
    };
}

ExportResult Video::exportProject(const ExportOptions& options)
{
    PendingFile file(options.destination);
    ExportRun running(options, build(options.project, options.folder, exportSize(options.height)), file.path());
    auto result = running.run();
    if (result.outcome == ExportOutcome::Finished)
        file.moveIntoPlace();
    return result;
}

} // namespace vantry
