#include "render/OverlayHelper.h"

#include "base/HelperProgram.h"
#include "base/Log.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>

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

std::array<Descriptor, 2> makeConnection()
{
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        fail("No connection to the overlay helper", errno);
    return { Descriptor(ends[0]), Descriptor(ends[1]) };
}

/// Whether the reply is one to this request.
bool isSensible(const overlays::Reply& reply, double cssWidth)
{
    if (reply.outcome != overlays::Outcome::Rendered)
        return reply.outcome <= overlays::Outcome::EngineDied && reply.width == 0 && reply.height == 0;
    return reply.width == overlays::bitmapWidth(cssWidth) && reply.height > 0
        && reply.height <= overlays::scale * overlays::heightLimit(cssWidth) && reply.height % overlays::scale == 0;
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
    : OverlayHelper(program, interrupt, makeConnection())
{
}

OverlayHelper::OverlayHelper(const fs::path& program, const WakeUp& interrupt, Connection connection)
    : m_interrupt(interrupt)
    , m_socket(std::move(connection[0]))
    , m_process({ .title = "The overlay helper", .program = program, .input = connection[1].number() })
{
    fcntl(m_socket.number(), F_SETFL, O_NONBLOCK);
}

OverlayHelper::Rendering OverlayHelper::render(const std::string& fragment, double cssWidth, std::chrono::milliseconds longest)
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
        return { .outcome = reply.outcome };
    }
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(reply.width) * static_cast<std::size_t>(reply.height) * 4);
    receive(pixels.data(), pixels.size(), deadline);
    return { .outcome = reply.outcome, .bitmap = Bitmap(reply.width, reply.height, std::move(pixels)) };
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
        const auto count = ::send(m_socket.number(), next, size, MSG_NOSIGNAL);
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
        const auto count = recv(m_socket.number(), next, size, 0);
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
        throw HangingHelper("The overlay helper hangs");
    std::array<pollfd, 2> files{ { { m_socket.number(), events, 0 }, { m_interrupt.descriptor(), POLLIN, 0 } } };
    poll(files.data(), files.size(), static_cast<int>(left.count()));
    if (files[1].revents != 0)
        throw AppError("The rendering was given up");
}

} // namespace vantry
