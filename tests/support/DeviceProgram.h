#pragma once

#include "support/Command.h"

#include <QProcess>
#include <QStringList>

#include <chrono>
#include <string>

namespace vantry::test {

/// A name that no other test uses: tests run side by side on one desktop.
inline std::string uniqueName(const std::string& base)
{
    return base + "-" + std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
}

/// A camera or a microphone of the test's own beside the desktop's: there while the object exists. `DEVICE_TOOLS` is the folder of
/// the programs.
class DeviceProgram {
public:
    DeviceProgram(const char* program, const QStringList& arguments)
    {
        m_process.setProcessChannelMode(QProcess::ForwardedChannels);
        m_process.start(QStringLiteral(DEVICE_TOOLS "/") + QString::fromLatin1(program), arguments);
        m_process.waitForStarted();
    }
    ~DeviceProgram()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    DeviceProgram(const DeviceProgram&) = delete;
    DeviceProgram& operator=(const DeviceProgram&) = delete;

private:
    QProcess m_process;
};

/// A camera of the test's own with all formats and sizes: the desktop's is looked through by other tests too, in their formats.
class OwnCamera {
public:
    const std::string& name() const { return m_name; }

private:
    const std::string m_name = uniqueName("camera");
    const DeviceProgram m_program{ "testcamera", { QString::fromStdString(m_name), QStringLiteral("Own camera") } };
};

} // namespace vantry::test
