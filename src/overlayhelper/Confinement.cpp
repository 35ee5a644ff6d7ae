#include "overlayhelper/Confinement.h"

#include <csignal>
#include <cstdio>
#include <memory>
#include <string>

#include <fcntl.h>
#include <sched.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace vantry {

namespace {

void writeTo(const char* path, const std::string& text)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "we"), std::fclose);
    if (file)
        std::fputs(text.c_str(), file.get());
}

/// Under its own number: with ids that nobody mapped, the engine could not set up the sandbox of its own processes.
std::string mappedToItself(unsigned id)
{
    return std::to_string(id) + ' ' + std::to_string(id) + " 1";
}

} // namespace

int keepSocketForOurselves()
{
    const int socket = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nothing, STDIN_FILENO);
    dup2(nothing, STDOUT_FILENO);
    close(nothing);
    return socket;
}

void endWithParent()
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
}

void leaveNetwork()
{
    const auto user = geteuid();
    const auto group = getegid();
    if (user == 0) {
        unshare(CLONE_NEWNET);
        return;
    }
    if (unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
        return;
    writeTo("/proc/self/setgroups", "deny");
    writeTo("/proc/self/uid_map", mappedToItself(user));
    writeTo("/proc/self/gid_map", mappedToItself(group));
}

} // namespace vantry
