#include "support/HoldsSoon.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <csignal>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantry {

namespace fs = std::filesystem;
using test::holdsSoon;

namespace {

std::string contentOf(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), {} };
}

/// A guard with a shell script below it, on a terminal of its own. Whatever the script starts carries a mark in its environment.
class GuardedScript {
public:
    explicit GuardedScript(const std::string& script)
        : m_mark("VANTRY_MARK=" + std::to_string(getpid()) + "-" + std::to_string(s_count++))
    {
        m_guard = forkpty(&m_terminal, nullptr, nullptr, nullptr);
        if (m_guard == 0) {
            putenv(m_mark.data());
            std::signal(SIGINT, SIG_DFL); // Ignored where these tests run in the background.
            execl(SESSION_GUARD, "sessionguard", "sh", "-c", script.c_str(), nullptr);
            _exit(99);
        }
    }

    ~GuardedScript()
    {
        for (pid_t process : processes())
            kill(process, SIGKILL);
        close(m_terminal);
    }

    /// The outer one of the two.
    pid_t guard() const { return m_guard; }

    void type(const std::string& text) { ASSERT_EQ(write(m_terminal, text.data(), text.size()), std::ssize(text)); }

    /// What the script prints up to the end of its first line.
    std::string firstLine()
    {
        std::string line;
        for (char c = 0; read(m_terminal, &c, 1) == 1 && c != '\r';)
            line += c;
        return line;
    }

    int status()
    {
        int status = 0;
        if (!holdsSoon([&] { return waitpid(m_guard, &status, WNOHANG) != 0; }))
            return -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }

    /// Every living process with the mark: the guards, the script, and all that it started.
    std::vector<pid_t> processes() const
    {
        std::vector<pid_t> found;
        for (const auto& entry : fs::directory_iterator("/proc", fs::directory_options::skip_permission_denied)) {
            const auto id = entry.path().filename().string();
            if (id.find_first_not_of("0123456789") == std::string::npos && isMarked(contentOf(entry.path() / "environ")))
                found.push_back(std::stoi(id));
        }
        return found;
    }

private:
    bool isMarked(const std::string& environment) const { return environment.find(m_mark + '\0') != std::string::npos; }

    static inline int s_count = 0;

    std::string m_mark;
    int m_terminal = -1;
    pid_t m_guard = -1;
};

// A child in the background, a detached one, a daemon, and one that does not end when it is asked to.
const std::string startsManyProcesses = "sleep 1000 & "
                                        "setsid --fork sleep 1000; "
                                        "(setsid sh -c 'sleep 1000 & sleep 1000' &) ; "
                                        "setsid --fork sh -c 'trap \"\" TERM; while :; do sleep 1000; done'; ";
constexpr int sleepersStarted = 5;

/// Sleepers alone are counted: they stay, and a shell that starts one has got beyond what came before.
bool allRun(const GuardedScript& script, int sleepers = sleepersStarted)
{
    const auto sleeps = [](pid_t process) { return contentOf("/proc/" + std::to_string(process) + "/comm") == "sleep\n"; };
    return holdsSoon([&] { return std::ranges::count_if(script.processes(), sleeps) == sleepers; });
}

void expectNothingIsLeft(const GuardedScript& script, const fs::path& folder)
{
    EXPECT_TRUE(holdsSoon([&] { return script.processes().empty(); }));
    EXPECT_TRUE(holdsSoon([&] { return !fs::exists(folder); })) << folder;
}

pid_t outerGuard(const GuardedScript& script)
{
    return script.guard();
}

pid_t innerGuard(const GuardedScript& script)
{
    for (pid_t process : script.processes())
        if (contentOf("/proc/" + std::to_string(process) + "/stat").find(") S " + std::to_string(script.guard()) + " ")
            != std::string::npos)
            return process;
    return 0;
}

} // namespace

TEST(SessionGuard, handsTheStatusBack)
{
    EXPECT_EQ(GuardedScript("exit 7").status(), 7);
    EXPECT_EQ(GuardedScript("kill -KILL $$").status(), 128 + SIGKILL);
    EXPECT_EQ(GuardedScript("exec /no/such/program").status(), 127);
}

TEST(SessionGuard, theCommandHasAFolderWhileItRuns)
{
    GuardedScript script("echo $VANTRY_SESSION; read line; touch $VANTRY_SESSION/file; mkdir $VANTRY_SESSION/folder");
    const fs::path folder = script.firstLine();
    EXPECT_TRUE(fs::is_directory(folder));
    script.type("\n");
    EXPECT_EQ(script.status(), 0);
    EXPECT_FALSE(fs::exists(folder));
}

TEST(SessionGuard, nothingIsLeftWhenTheCommandEnds)
{
    GuardedScript script(startsManyProcesses + "echo $VANTRY_SESSION; read line; exit 5");
    const auto folder = script.firstLine();
    ASSERT_TRUE(allRun(script));
    script.type("\n");
    EXPECT_EQ(script.status(), 5);
    EXPECT_THAT(script.processes(), testing::IsEmpty());
    expectNothingIsLeft(script, folder);
}

TEST(SessionGuard, nothingIsLeftWhenItIsAskedToEnd)
{
    GuardedScript script(startsManyProcesses + "echo $VANTRY_SESSION; wait");
    const auto folder = script.firstLine();
    ASSERT_TRUE(allRun(script));
    kill(script.guard(), SIGTERM);
    EXPECT_EQ(script.status(), 128 + SIGTERM);
    expectNothingIsLeft(script, folder);
}

TEST(SessionGuard, nothingIsLeftWhenEitherGuardIsKilled)
{
    for (auto victim : { outerGuard, innerGuard }) {
        GuardedScript script(startsManyProcesses + "echo $VANTRY_SESSION; wait");
        const auto folder = script.firstLine();
        ASSERT_TRUE(allRun(script));
        const pid_t killed = victim(script);
        ASSERT_GT(killed, 0);
        kill(killed, SIGKILL);
        script.status();
        expectNothingIsLeft(script, folder);
    }
}

TEST(SessionGuard, ctrlCEndsTheCommandAndWithItTheSession)
{
    GuardedScript script(startsManyProcesses + "echo $VANTRY_SESSION; exec sleep 1000");
    const auto folder = script.firstLine();
    ASSERT_TRUE(allRun(script, sleepersStarted + 1));
    script.type("\x03");
    EXPECT_EQ(script.status(), 128 + SIGINT);
    expectNothingIsLeft(script, folder);
}

TEST(SessionGuard, aCommandMaySurviveCtrlC)
{
    GuardedScript script("trap 'echo caught' INT; echo ready; read line; read line; exit 3");
    EXPECT_EQ(script.firstLine(), "ready");
    script.type("\x03");
    script.type("\n\n");
    EXPECT_EQ(script.status(), 3);
}

} // namespace vantry
