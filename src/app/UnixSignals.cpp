#include "app/UnixSignals.h"

#include "base/AppError.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace vantry {

namespace {

constexpr std::array numbers{ SIGINT, SIGTERM, SIGHUP };

/// The pipe's end that the handler writes to: a handler may do little else.
std::atomic<int> writeEnd = -1;

extern "C" void forwardSignal(int number)
{
    const int error = errno;
    const auto byte = static_cast<unsigned char>(number);
    // When the pipe is full somebody has been told already.
    [[maybe_unused]] const auto written = ::write(writeEnd, &byte, sizeof byte);
    errno = error;
}

void handleWith(void (*handler)(int))
{
    struct sigaction action { };
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int number : numbers)
        ::sigaction(number, &action, nullptr);
}

} // namespace

UnixSignals::UnixSignals()
{
    if (::pipe2(m_pipe, O_CLOEXEC | O_NONBLOCK) != 0)
        throw AppError("Cannot watch for signals");
    writeEnd = m_pipe[1];
    connect(&m_notifier, &QSocketNotifier::activated, this, &UnixSignals::read);
    m_notifier.setSocket(m_pipe[0]);
    m_notifier.setEnabled(true);
    handleWith(forwardSignal);
}

UnixSignals::~UnixSignals()
{
    handleWith(SIG_DFL);
    m_notifier.setEnabled(false);
    ::close(m_pipe[0]);
    ::close(m_pipe[1]);
}

void UnixSignals::read()
{
    unsigned char number = 0;
    if (::read(m_pipe[0], &number, sizeof number) != sizeof number)
        return;
    // Whoever asks again does not want to wait.
    handleWith(SIG_DFL);
    Q_EMIT caught(number);
}

} // namespace vantry
