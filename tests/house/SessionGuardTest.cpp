#include "support/HoldsSoon.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
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

// A child in the background, a detached one, a daemon, and one that does not end when it is asked to; and a folder with something
// in it.
const std::string startsALot = "sleep 1000 & "
                               "setsid --fork sleep 1000; "
                               "(setsid sh -c 'sleep 1000 & sleep 1000' &) ; "
                               "setsid --fork sh -c 'trap \"\" TERM; while :; do sleep 1000; done'; "
                               "mkdir $VANTRY_SESSION/folder; touch $VANTRY_SESSION/folder/file; echo $VANTRY_SESSION; ";
constexpr int sleepersStarted = 5;

/// Sleepers alone are counted: they stay, and a shell that starts one has got beyond what came before.
bool haveStarted(const GuardedScript& script, int sleepers)
{
    const auto sleeps = [](pid_t process) { return contentOf("/proc/" + std::to_string(process) + "/comm") == "sleep\n"; };
    return holdsSoon([&] { return std::ranges::count_if(script.processes(), sleeps) == sleepers; });
}

pid_t innerGuard(const GuardedScript& script)
{
    const auto guard = std::to_string(script.guard());
    return std::stoi(contentOf("/proc/" + guard + "/task/" + guard + "/children"));
}

struct Ending {
    const char* command; ///< What the script becomes; one more sleeper.
    std::function<void(GuardedScript&)> end;
    std::optional<int> status;
};

} // namespace

TEST(SessionGuard, handsTheStatusBackWhenNobodyIsLeft)
{
    GuardedScript script("setsid --fork sleep 1000; exit 7");
    EXPECT_EQ(script.status(), 7);
    EXPECT_THAT(script.processes(), testing::IsEmpty());
    EXPECT_EQ(GuardedScript("kill -KILL $$").status(), 128 + SIGKILL);
    EXPECT_EQ(GuardedScript("exec /no/such/program").status(), 127);
}

TEST(SessionGuard, nothingIsLeftHoweverItEnds)
{
    const Ending endings[] = {
        { "sleep 1000 & read line; exit 5", [](GuardedScript& script) { script.type("\n"); }, 5 },
        { "exec sleep 1000", [](GuardedScript& script) { script.type("\x03"); }, 128 + SIGINT },
        { "exec sleep 1000", [](GuardedScript& script) { kill(script.guard(), SIGTERM); }, 128 + SIGTERM },
        { "exec sleep 1000", [](GuardedScript& script) { kill(script.guard(), SIGKILL); }, {} },
        { "exec sleep 1000", [](GuardedScript& script) { kill(innerGuard(script), SIGKILL); }, {} },
    };
    for (const auto& ending : endings) {
        GuardedScript script(startsALot + ending.command);
        const fs::path folder = script.firstLine();
        ASSERT_TRUE(haveStarted(script, sleepersStarted + 1));
        EXPECT_TRUE(fs::exists(folder / "folder/file"));
        ending.end(script);
        const int status = script.status();
        EXPECT_EQ(status, ending.status.value_or(status));
        EXPECT_TRUE(holdsSoon([&] { return script.processes().empty(); }));
        EXPECT_TRUE(holdsSoon([&] { return !fs::exists(folder); })) << folder;
    }
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
