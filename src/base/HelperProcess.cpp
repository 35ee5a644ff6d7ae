#include "base/HelperProcess.h"

#include "base/AppError.h"

#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantry {

namespace {

/// Pointers into `words`, as programs get them.
std::vector<char*> asArguments(std::vector<std::string>& words)
{
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (auto& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    return arguments;
}

void give(posix_spawn_file_actions_t& files, int file, int as)
{
    if (file >= 0)
        posix_spawn_file_actions_adddup2(&files, file, as);
    else
        posix_spawn_file_actions_addopen(&files, as, "/dev/null", O_RDWR, 0);
}

} // namespace

HelperProcess::HelperProcess(const HelperStart& start)
{
    std::vector<std::string> words{ start.program.string() };
    words.insert(words.end(), start.arguments.begin(), start.arguments.end());
    const auto arguments = asArguments(words);
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    give(files, start.input, STDIN_FILENO);
    give(files, start.output, STDOUT_FILENO);
    give(files, -1, STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    const int error = posix_spawn(&m_process, arguments[0], &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    if (error)
        throw AppError(start.title + " could not be started: " + std::generic_category().message(error));
}

HelperProcess::~HelperProcess()
{
    if (m_process <= 0)
        return;
    kill(-m_process, SIGKILL);
    endsWell();
}

bool HelperProcess::isRunning() const
{
    siginfo_t end{};
    const int asked = waitid(P_PID, static_cast<id_t>(m_process), &end, WEXITED | WNOHANG | WNOWAIT);
    return asked == 0 && end.si_pid == 0;
}

bool HelperProcess::endsWell()
{
    int status = 0;
    while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) { }
    m_process = -1;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace vantry
