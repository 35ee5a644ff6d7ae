#pragma once

#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

namespace vantry::test {

/// Runs a line of the shell and gives what it wrote to standard output. Throws when its exit status is not 0.
inline std::string runCommand(const std::string& line)
{
    std::FILE* pipe = popen(line.c_str(), "r");
    if (!pipe)
        throw std::runtime_error("No shell for: " + line);
    std::string output;
    char buffer[4096];
    while (const auto count = std::fread(buffer, 1, sizeof buffer, pipe))
        output.append(buffer, count);
    if (pclose(pipe) != 0)
        throw std::runtime_error("Failed: " + line);
    return output;
}

} // namespace vantry::test
