#include "support/TestProject.h"

#include "project/ProjectFile.h"
#include "support/TestMovie.h"

#include <cmath>

namespace vantry::test {

namespace {

constexpr std::uint8_t darkestOfBar = 67;

} // namespace

void writeTestProject(const std::filesystem::path& folder, double length, int times)
{
    std::filesystem::create_directories(folder);
    writeTestMovie(folder / "clip-1.mov", { .duration = length });
    Project project{ .name = folder.filename().string(), .layouts = { { 0, Layout::screen, Corner::bottomRight } } };
    for (int i = 0; i < times; ++i)
        project.clips.push_back({ .file = "clip-1.mov", .duration = length, .keep = length });
    saveProject(project, folder);
}

int frameOfBar(const Picture& picture)
{
    if (!picture)
        return -1;
    const Plane luma = picture.plane(PlaneY);
    const std::uint8_t* row = luma.row(luma.height / 2);
    for (int x = 0; x < luma.width; ++x)
        if (row[x] > darkestOfBar)
            return static_cast<int>(std::lround(double(x) / luma.width / barPlace(1)));
    return -1;
}

} // namespace vantry::test
