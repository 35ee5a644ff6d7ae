#include "support/XServer.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vantry::test {

namespace {

constexpr int inheritedAs = 3;

std::vector<std::string> serverCommand(int width, int height)
{
    const auto size = std::to_string(width) + "x" + std::to_string(height) + "x24";
    return { "Xvfb", "-displayfd", std::to_string(inheritedAs), "-screen", "0", size, "-nolisten", "tcp", "-noreset" };
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

Program::Program(const std::vector<std::string>& command, int inherited)
{
    std::vector<char*> arguments;
    for (const auto& word : command)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    m_pid = fork();
    if (m_pid < 0)
        throw std::system_error(errno, std::generic_category(), "fork");
    if (m_pid > 0)
        return;
    // Whatever becomes of the test, nothing of it may live on or keep its files open.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int null = open("/dev/null", O_RDWR);
    for (const int fd : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO })
        dup2(null, fd);
    if (inherited >= 0)
        dup2(inherited, inheritedAs);
    close_range(inherited >= 0 ? inheritedAs + 1 : inheritedAs, ~0u, 0);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

int Program::wait()
{
    int status = 0;
    waitpid(std::exchange(m_pid, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void Program::end()
{
    if (m_pid <= 0)
        return;
    ::kill(m_pid, SIGTERM);
    wait();
}

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
