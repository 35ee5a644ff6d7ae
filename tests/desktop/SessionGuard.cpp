// sessionguard CMD [ARG...]
//
// Runs CMD in an empty folder of its own (named by VANTRY_SESSION, removed at the end) and leaves no process behind: when CMD has
// ended, or when this program is asked to end, everything that CMD started, detached or not, is ended too. Exit status: CMD's,
// 128 + n when signal n ended it, 125 when it could not be run.
//
// Orphans below a "child subreaper" become its children, so nothing gets away by detaching itself. There are two such guards, one
// inside the other: when one of them is killed, the other one clears up.

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr int cannotRun = 125;

// How long processes get between the polite signal and the one that cannot be refused. The command gets more: it may have to save.
constexpr milliseconds graceForCommand{ 5000 };
constexpr milliseconds graceForRest{ 2000 };
constexpr milliseconds pollInterval{ 10 };

sigset_t watchedSignals()
{
    sigset_t set;
    sigemptyset(&set);
    for (int signal : { SIGCHLD, SIGTERM, SIGHUP, SIGINT, SIGQUIT })
        sigaddset(&set, signal);
    return set;
}

/// The next signal within `timeout`, or nothing.
std::optional<siginfo_t> nextSignal(milliseconds timeout)
{
    const auto set = watchedSignals();
    const timespec wait{ timeout.count() / 1000, timeout.count() % 1000 * 1000000 };
    siginfo_t info;
    if (sigtimedwait(&set, &info, &wait) < 0)
        return std::nullopt;
    return info;
}

/// A terminal sends Ctrl-C to the command as well, and what it means is the command's decision (a shell only drops its line).
bool asksToEnd(const siginfo_t& info)
{
    if (info.si_signo == SIGCHLD)
        return false;
    const bool fromTerminal = info.si_code == SI_KERNEL && (info.si_signo == SIGINT || info.si_signo == SIGQUIT);
    return !fromTerminal;
}

/// The parent's id in /proc/ID/stat: the second field after the name, which is in parentheses and may hold any character.
pid_t parentOf(const std::filesystem::path& process)
{
    std::ifstream file(process / "stat");
    std::string text;
    std::getline(file, text, '\0');
    const auto nameEnd = text.rfind(')');
    pid_t parent = 0;
    char state = 0;
    if (nameEnd == std::string::npos || std::sscanf(text.c_str() + nameEnd + 1, " %c %d", &state, &parent) != 2)
        return 0;
    return parent;
}

std::vector<pid_t> children()
{
    std::vector<pid_t> found;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const auto name = entry.path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos && parentOf(entry.path()) == getpid())
            found.push_back(std::stoi(name));
    }
    return found;
}

/// Collects children that have ended. False when there are no children left.
bool reap()
{
    pid_t ended = 0;
    do {
        ended = waitpid(-1, nullptr, WNOHANG);
    } while (ended > 0);
    return ended == 0;
}

/// Ends every child, and what becomes a child because its parent ended. Only children are sent signals, for their ids cannot pass
/// to another process before they have been waited for.
void endEverything()
{
    const auto deadline = Clock::now() + graceForRest;
    std::set<pid_t> asked;
    while (reap()) {
        const bool patient = Clock::now() < deadline;
        for (pid_t child : children())
            if (!patient || asked.insert(child).second)
                kill(child, patient ? SIGTERM : SIGKILL);
        nextSignal(pollInterval);
    }
}

/// The exit status of `command`, if it has ended. Reaps orphans on the way.
std::optional<int> statusOf(pid_t command)
{
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(-1, &status, WNOHANG)) > 0)
        if (ended == command)
            return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return std::nullopt;
}

/// Waits until `command` ends; when this program is asked to end, hands that on and waits for so long only.
int follow(pid_t command, milliseconds grace)
{
    std::optional<Clock::time_point> deadline;
    int askedBy = 0;
    for (;;) {
        if (const auto status = statusOf(command))
            return askedBy ? 128 + askedBy : *status;
        if (deadline && Clock::now() > *deadline)
            return 128 + askedBy;
        const auto signal = nextSignal(deadline ? pollInterval : milliseconds(1000));
        if (signal && asksToEnd(*signal) && !deadline) {
            askedBy = signal->si_signo;
            deadline = Clock::now() + grace;
            kill(command, SIGTERM);
        }
    }
}

/// Starts `run` in a child that is asked to end when its parent does, and clears up behind it.
template <typename Run>
int guard(Run run, milliseconds grace)
{
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0)
        return cannotRun;
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent)
            _exit(cannotRun);
        _exit(run());
    }
    const int status = follow(child, grace);
    endEverything();
    return status;
}

/// Both guards remove the folder, for either may be killed.
template <typename Run>
int guardAndRemove(const std::filesystem::path& folder, Run run, milliseconds grace)
{
    const int status = guard(run, grace);
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
    return status;
}

int become(char** command, const sigset_t& signals)
{
    sigprocmask(SIG_SETMASK, &signals, nullptr);
    execvp(command[0], command);
    std::cerr << command[0] << ": " << std::strerror(errno) << std::endl;
    return cannotRun;
}

} // namespace

int main(int count, char** arguments)
{
    // The path is short because sockets are made below it, whose names are limited to 108 bytes.
    char folder[] = "/tmp/vantry-XXXXXX";
    if (count < 2 || !mkdtemp(folder)) {
        std::cerr << "usage: sessionguard CMD [ARG...] (and /tmp must be writable)" << std::endl;
        return cannotRun;
    }
    setenv("VANTRY_SESSION", folder, 1);

    const auto watched = watchedSignals();
    sigset_t before;
    sigprocmask(SIG_BLOCK, &watched, &before);
    const auto command = [&] { return become(arguments + 1, before); };
    const auto inside = [&] { return guardAndRemove(folder, command, graceForCommand); };
    return guardAndRemove(folder, inside, graceForCommand + 2 * graceForRest);
}
