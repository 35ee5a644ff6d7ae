#include "ExportMaterial.h"
#include "PeakMemory.h"

#include "render/Exporter.h"

#include <cstdlib>
#include <exception>
#include <iostream>

/// vantry_export_once FOLDER REPEATS FILE: one export of the benches' project in a process of its own, so that its memory can be
/// measured: it prints the peak in kilobytes.
int main(int count, char** arguments)
{
    using namespace vantry;
    if (count != 4)
        return 2;
    try {
        const auto project = bench::exportBenchProject(std::atoi(arguments[2]));
        Video::exportProject({ .project = project,
            .folder = arguments[1],
            .destination = arguments[3],
            .images = bench::exportBenchImages(project) });
        std::cout << bench::peakKilobytes() << '\n';
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
