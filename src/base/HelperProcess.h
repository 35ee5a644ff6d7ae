#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <sys/types.h>

namespace vantry {

/// What a helper is started with.
struct HelperStart {
    std::string title; ///< What errors call it.
    std::filesystem::path program;
    std::vector<std::string> arguments{};

    /// Files that become its standard input and output; negative where there is nothing to read or to say.
    int input = -1;
    int output = -1;
};

/// A helper program that runs: in a process group of its own, so that a key pressed for us does not reach it, and without the words
/// that its libraries write to the standard error. Destroying it ends it, and all that it has started in its group. One thread at a
/// time.
class HelperProcess {
public:
    /// Throws AppError when it cannot be started.
    explicit HelperProcess(const HelperStart& start);
    ~HelperProcess();

    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    /// False once it has ended, whatever it ended of.
    bool isRunning() const;

    /// Waits until it has ended; true when it did so with exit status 0. Once.
    bool endsWell();

private:
    pid_t m_process = -1; ///< Negative once it was waited for.
};

} // namespace vantry
