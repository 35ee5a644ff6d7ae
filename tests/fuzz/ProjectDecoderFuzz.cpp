#include "base/AppError.h"
#include "project/Edits.h"
#include "project/ProjectDecoder.h"
#include "project/ProjectEncoder.h"
#include "project/ProjectIndex.h"
#include "project/Timeline.h"
#include "project/Transcript.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <optional>

using namespace vantry;

namespace {

std::optional<Project> decode(std::string_view bytes)
{
    try {
        return decodeProject(bytes);
    } catch (const AppError&) {
        return std::nullopt;
    }
}

void require(bool holds, const char* what)
{
    if (holds)
        return;
    std::cerr << what << '\n';
    std::abort();
}

/// Whatever a file holds, nothing that the program asks about it may fail.
void use(Project project)
{
    const ProjectIndex index(project);
    for (const auto& event : project.layouts) {
        require(index.layoutAt(event.time).event == layoutInForce(project, event.time), "The index finds another layout");
        static_cast<void>(index.clipAt(event.time));
    }
    for (const auto& overlay : project.overlays)
        static_cast<void>(index.visibleOverlays(overlay.start));
    static_cast<void>(transcriptText(project));
    setLayout(project, Layout::screen, Corner::topLeft, totalLength(project) / 2);
    cut(project, totalLength(project) / 3);
}

} // namespace

/// Any bytes are a project or an AppError; a project that was read is written and read again to the same bytes.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto project = decode({ reinterpret_cast<const char*>(data), size });
    if (!project)
        return 0;
    const auto written = encodeProject(*project);
    require(encodeProject(decodeProject(written)) == written, "Written again, the project has other bytes");
    use(*project);
    return 0;
}
