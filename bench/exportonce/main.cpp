#include "ExportMaterial.h"

#include "render/Exporter.h"

#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

/// The most memory that this program has had so far, in kilobytes.
long peakKilobytes()
{
    std::ifstream status("/proc/self/status");
    const std::string name = "VmHWM:";
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name))
            return std::atol(line.c_str() + name.size());
    throw std::runtime_error("The system does not say how much memory there was");
}

} // namespace

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
        std::cout << peakKilobytes() << '\n';
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
