#pragma once

#include <csignal>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vantry::test {

/// A program that runs at most as long as the object lives, and as the thread that made it. It reads and writes nothing of ours.
class Program {
public:
    static constexpr int inheritedAs = 3;

    /// `inherited`: a file of ours that it gets as its number 3.
    explicit Program(std::vector<std::string> command, int inherited = -1);
    ~Program() { end(); }

    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t pid() const { return m_pid; }

    /// Its exit status once it has ended by itself.
    int wait();

    /// Ends it and waits until it is gone.
    void end(int signal = SIGTERM);

private:
    pid_t m_pid = -1;
};

} // namespace vantry::test
