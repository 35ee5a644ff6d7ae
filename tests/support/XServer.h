#pragma once

#include "support/Program.h"

#include <memory>
#include <string>

namespace vantry::test {

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
