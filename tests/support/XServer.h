#pragma once

#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace vantry::test {

/// A program that runs at most as long as the object lives.
class Program {
public:
    /// `inherited`: a file of ours that it gets as its number 3.
    explicit Program(const std::vector<std::string>& command, int inherited = -1);
    ~Program() { end(); }

    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    pid_t pid() const { return m_pid; }

    /// Its exit status once it has ended by itself.
    int wait();

    /// Ends it and waits until it is gone.
    void end();

private:
    pid_t m_pid = -1;
};

/// A screen of the test's own, without a window manager and without anybody else's windows. While it lives it is the environment's
/// DISPLAY, so make it before any thread.
class XServer {
public:
    XServer(int width, int height);
    ~XServer();

    const std::string& name() const { return m_name; }
    void kill() { m_program->end(); }

private:
    std::string m_previous;
    std::unique_ptr<Program> m_program;
    std::string m_name;
};

} // namespace vantry::test
