#pragma once

#include "support/Program.h"
#include "support/UniqueName.h"

#include <string>
#include <vector>

namespace vantry::test {

/// A camera or a microphone of the test's own beside the desktop's: there while the object exists. `DEVICE_TOOLS` is the folder of
/// the programs.
class DeviceProgram {
public:
    using Arguments = std::vector<std::string>;

    DeviceProgram(const std::string& program, const Arguments& arguments)
        : m_program(command(program, arguments))
    {
    }
    ~DeviceProgram() { m_program.end(SIGKILL); } // Pulled out, not put away.

    /// It stays there and does nothing any more, or goes on.
    void freeze() { kill(m_program.pid(), SIGSTOP); }
    void thaw() { kill(m_program.pid(), SIGCONT); }

private:
    static Arguments command(const std::string& program, Arguments arguments)
    {
        arguments.insert(arguments.begin(), DEVICE_TOOLS "/" + program);
        return arguments;
    }

    Program m_program;
};

/// A camera of the test's own with all formats and sizes: the desktop's is looked through by other tests too, in their formats.
class OwnCamera {
public:
    const std::string& name() const { return m_name; }

private:
    const std::string m_name = uniqueName("camera");
    const DeviceProgram m_program{ "testcamera", { m_name, "Own camera" } };
};

} // namespace vantry::test
