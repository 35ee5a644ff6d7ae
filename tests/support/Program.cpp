#include "support/Program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace vantry::test {

// Not QProcess: the thread sanitizer takes its child, which shares our memory until it has become the program, for ourselves after
// a fork, and follows the thread that started it no longer.
Program::Program(std::vector<std::string> command, int inherited)
{
    // Whatever becomes of the test, nothing of it may live on or keep its files open.
    const char* const untilWeEnd[] = { "setpriv", "--pdeathsig", "KILL", "--" };
    command.insert(command.begin(), std::begin(untilWeEnd), std::end(untilWeEnd));
    std::vector<char*> arguments;
    for (auto& word : command)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    for (const int fd : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO })
        posix_spawn_file_actions_addopen(&files, fd, "/dev/null", O_RDWR, 0);
    if (inherited >= 0)
        posix_spawn_file_actions_adddup2(&files, inherited, inheritedAs);
    posix_spawn_file_actions_addclosefrom_np(&files, inherited >= 0 ? inheritedAs + 1 : inheritedAs);
    const int error = posix_spawnp(&m_pid, arguments[0], &files, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&files);
    if (error)
        throw std::system_error(error, std::generic_category(), command[0]);
}

int Program::wait()
{
    int status = 0;
    waitpid(std::exchange(m_pid, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void Program::end(int signal)
{
    if (m_pid <= 0)
        return;
    kill(m_pid, signal);
    wait();
}

} // namespace vantry::test
