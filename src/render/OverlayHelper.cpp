#include "render/OverlayHelper.h"

#include "base/AppError.h"
#include "base/HelperProgram.h"
#include "base/Log.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantry {

namespace fs = std::filesystem;
using std::chrono::steady_clock;

namespace {

/// A hundred megabytes may have to come from a slow disk.
constexpr std::chrono::seconds longestStart{ 30 };

[[noreturn]] void fail(const char* what, int error)
{
    throw AppError(std::string(what) + ": " + std::generic_category().message(error));
}

/// Whether the reply is one to this request.
bool isSensible(const overlays::Reply& reply, double cssWidth)
{
    if (reply.outcome != overlays::Outcome::Rendered)
        return reply.outcome <= overlays::Outcome::EngineDied && reply.width == 0 && reply.height == 0;
    return reply.width == overlays::bitmapWidth(cssWidth) && reply.height > 0
        && reply.height <= overlays::scale * overlays::largestHeight && reply.height % overlays::scale == 0;
}

const char* describe(overlays::Outcome outcome)
{
    switch (outcome) {
    case overlays::Outcome::Rendered:
        return "rendered";
    case overlays::Outcome::Refused:
        return "too large";
    case overlays::Outcome::Failed:
        return "the engine failed";
    case overlays::Outcome::TimedOut:
        return "it took too long";
    case overlays::Outcome::EngineDied:
        return "the engine died";
    }
    return "unknown";
}

} // namespace

void warnOfMissingOverlay(overlays::Outcome outcome)
{
    qCWarning(logRender) << "An overlay was not rendered:" << describe(outcome);
}

fs::path OverlayHelper::program()
{
    return helperProgram("vantry-overlays", VANTRY_OVERLAYS_PROGRAM);
}

OverlayHelper::OverlayHelper(const fs::path& program, const WakeUp& interrupt)
    : m_interrupt(interrupt)
{
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        fail("No connection to the overlay helper", errno);
    m_socket = ends[0];
    fcntl(m_socket, F_SETFL, O_NONBLOCK);
    try {
        start(program, ends[1]);
    } catch (...) {
        close(ends[0]);
        close(ends[1]);
        throw;
    }
    close(ends[1]);
}

/// With a group of its own, which ends as a whole, and without the words of its engine.
void OverlayHelper::start(const fs::path& program, int theirs)
{
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, theirs, STDIN_FILENO);
    for (const int output : { STDOUT_FILENO, STDERR_FILENO })
        posix_spawn_file_actions_addopen(&files, output, "/dev/null", O_RDWR, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    std::string name = program.string();
    const std::array<char*, 2> arguments{ name.data(), nullptr };
    const int error = posix_spawn(&m_process, name.c_str(), &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    if (error)
        fail("The overlay helper could not be started", error);
}

OverlayHelper::~OverlayHelper()
{
    close(m_socket);
    kill(-m_process, SIGKILL);
    while (waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) { }
}

bool OverlayHelper::isRunning() const
{
    siginfo_t end{};
    const int asked = waitid(P_PID, static_cast<id_t>(m_process), &end, WEXITED | WNOHANG | WNOWAIT);
    return asked == 0 && end.si_pid == 0;
}

std::optional<Bitmap> OverlayHelper::render(const std::string& fragment, double cssWidth, std::chrono::milliseconds longest)
{
    awaitStart();
    const auto deadline = steady_clock::now() + longest;
    const overlays::Request request{ fragment.size(), cssWidth };
    send(&request, sizeof request, deadline);
    send(fragment.data(), fragment.size(), deadline);
    overlays::Reply reply;
    receive(&reply, sizeof reply, deadline);
    if (!isSensible(reply, cssWidth))
        throw AppError("The overlay helper answered nonsense");
    if (reply.outcome != overlays::Outcome::Rendered) {
        warnOfMissingOverlay(reply.outcome);
        return std::nullopt;
    }
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(reply.width) * static_cast<std::size_t>(reply.height) * 4);
    receive(pixels.data(), pixels.size(), deadline);
    return Bitmap(reply.width, reply.height, std::move(pixels));
}

void OverlayHelper::awaitStart()
{
    if (m_hasStarted)
        return;
    std::uint32_t word = 0;
    receive(&word, sizeof word, steady_clock::now() + longestStart);
    if (word != overlays::startedWord)
        throw AppError("The overlay helper answered nonsense");
    m_hasStarted = true;
}

void OverlayHelper::send(const void* bytes, std::size_t size, Deadline deadline) const
{
    const auto* next = static_cast<const std::uint8_t*>(bytes);
    while (size > 0) {
        const auto count = ::send(m_socket, next, size, MSG_NOSIGNAL);
        if (count > 0) {
            next += count;
            size -= static_cast<std::size_t>(count);
        } else if (errno == EAGAIN) {
            waitFor(POLLOUT, deadline);
        } else if (errno != EINTR) {
            fail("The overlay helper has ended", errno);
        }
    }
}

void OverlayHelper::receive(void* bytes, std::size_t size, Deadline deadline) const
{
    auto* next = static_cast<std::uint8_t*>(bytes);
    while (size > 0) {
        const auto count = recv(m_socket, next, size, 0);
        if (count == 0)
            throw AppError("The overlay helper has ended");
        if (count > 0) {
            next += count;
            size -= static_cast<std::size_t>(count);
        } else if (errno == EAGAIN) {
            waitFor(POLLIN, deadline);
        } else if (errno != EINTR) {
            fail("The overlay helper has ended", errno);
        }
    }
}

void OverlayHelper::waitFor(short events, Deadline deadline) const
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now());
    if (left.count() <= 0)
        throw AppError("The overlay helper hangs");
    std::array<pollfd, 2> files{ { { m_socket, events, 0 }, { m_interrupt.descriptor(), POLLIN, 0 } } };
    poll(files.data(), files.size(), static_cast<int>(left.count()));
    if (files[1].revents != 0)
        throw AppError("The rendering was given up");
}

} // namespace vantry
