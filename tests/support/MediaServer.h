#pragma once

#include "support/Program.h"
#include "support/PumpUntil.h"
#include "support/TemporaryFolder.h"

#include <cstdlib>
#include <optional>
#include <stdexcept>

namespace vantry::test {

/// A media server of the test's own beside the desktop's, without any device: connections that are made while it exists go to it.
/// Wants an event loop.
class MediaServer {
public:
    MediaServer()
    {
        setenv(variable, m_folder.path().c_str(), 1);
        start();
    }
    ~MediaServer()
    {
        kill();
        unsetenv(variable);
    }

    void start()
    {
        m_program.emplace(std::vector<std::string>{ "pipewire" });
        if (!pumpUntil([this] { return std::filesystem::exists(m_folder.path() / "pipewire-0"); }))
            throw std::runtime_error("No media server of our own");
    }

    void kill()
    {
        m_program->end(SIGKILL);
        std::filesystem::remove(m_folder.path() / "pipewire-0");
    }

    /// It stays there and does nothing any more, or goes on.
    void freeze() { ::kill(m_program->pid(), SIGSTOP); }
    void thaw() { ::kill(m_program->pid(), SIGCONT); }

private:
    static constexpr const char* variable = "PIPEWIRE_RUNTIME_DIR";

    TemporaryFolder m_folder;
    std::optional<Program> m_program;
};

} // namespace vantry::test
