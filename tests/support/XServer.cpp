#include "support/XServer.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace vantry::test {

namespace {

std::vector<std::string> serverCommand(int width, int height)
{
    const auto size = std::to_string(width) + "x" + std::to_string(height) + "x24";
    return { "Xvfb", "-displayfd", std::to_string(Program::inheritedAs), "-screen", "0", size, "-nolisten", "tcp", "-noreset" };
}

/// The server writes its display number and a newline once it takes connections.
std::string readName(int fd)
{
    std::string name = ":";
    pollfd ready{ .fd = fd, .events = POLLIN, .revents = 0 };
    for (char byte = 0; poll(&ready, 1, 20'000) == 1 && read(fd, &byte, 1) == 1; name += byte)
        if (byte == '\n')
            return name;
    throw std::runtime_error("Xvfb did not start");
}

std::string environment(const char* variable)
{
    const char* value = std::getenv(variable);
    return value ? value : "";
}

} // namespace

XServer::XServer(int width, int height)
    : m_previous(environment("DISPLAY"))
{
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::system_error(errno, std::generic_category(), "pipe");
    m_program = std::make_unique<Program>(serverCommand(width, height), ends[1]);
    close(ends[1]);
    m_name = readName(ends[0]);
    close(ends[0]);
    setenv("DISPLAY", m_name.c_str(), 1);
}

XServer::~XServer()
{
    setenv("DISPLAY", m_previous.c_str(), 1);
}

} // namespace vantry::test
