#include "capture/DeviceSlot.h"

#include <algorithm>
#include <utility>

namespace vantry {

using namespace std::chrono_literals;

namespace {

/// Just plugged in or given back, a device may be refused for a moment; the user is told when it lasts.
constexpr int failuresOfAMoment = 4;
constexpr HostDuration shortWait = 250ms;
constexpr HostDuration longWait = 2s;

/// A device that is heard again should not be called silent any longer than this.
constexpr HostDuration glance = 100ms;

/// A stream that lived this long had not failed to open.
constexpr HostDuration soundLife = 5s;

/// What takes long to begin is not disturbed again and again.
constexpr int mostPatience = 3;

} // namespace

void DeviceSlot::want(const std::optional<std::string>& id)
{
    if (id == m_wanted && (m_device || !id))
        return;
    close();
    m_wanted = id;
    m_device.reset();
    m_presence = Presence::There;
    forgiveFailures();
    report();
}

void DeviceSlot::update(const std::vector<MediaDevice>& there, bool shouldRun)
{
    m_shouldRun = shouldRun;
    const auto device = m_wanted ? std::ranges::find(there, *m_wanted, &MediaDevice::id) : there.end();
    const bool isThere = device != there.end();
    notePresence(isThere ? &*device : nullptr);
    if (!shouldRun)
        forgiveFailures();
    if (!isThere || !shouldRun)
        close();
    else if (m_stream)
        watch();
    else if (HostClock::now() >= m_retryAt)
        open();
    report();
}

void DeviceSlot::notePresence(const MediaDevice* device)
{
    const bool wasTaken = isTaken();
    if (device)
        m_device = *device;
    const auto presence = device || !wasTaken ? Presence::There : Presence::Gone;
    if (presence != m_presence)
        forgiveFailures();
    m_presence = presence;
}

std::string DeviceSlot::refusal() const
{
    const bool isWell = m_stream && isHeard();
    return isWell || m_failures < failuresOfAMoment ? std::string() : m_refusal;
}

void DeviceSlot::forgiveFailures()
{
    m_failures = 0;
    m_silences = 0;
    m_retryAt = {};
}

void DeviceSlot::open()
{
    const auto number = ++m_number;
    m_opened = HostClock::now();
    try {
        m_stream = m_actions.open(*m_device, number);
        m_actions.retryIn(glance);
    } catch (const AppError& error) {
        fail(number, error);
    }
}

void DeviceSlot::close()
{
    m_stream.reset();
    ++m_number;
}

/// An open device should give signs of life. One that does not is opened again.
void DeviceSlot::watch()
{
    if (isHeard())
        m_silences = 0;
    const HostDuration silence = HostClock::now() - std::max(m_actions.lastSign(), m_opened);
    const HostDuration longest = m_options.longestSilence * (1 << std::min(m_silences, mostPatience));
    if (silence < longest)
        return m_actions.retryIn(refusal().empty() ? longest - silence : glance);
    ++m_silences;
    close();
    // That was no moment.
    m_failures = std::max(m_failures, failuresOfAMoment);
    refuse(m_options.silence);
    m_retryAt = HostClock::now() + shortWait;
    m_actions.retryIn(shortWait);
}

void DeviceSlot::fail(std::uint64_t number, const AppError& error)
{
    if (number != m_number)
        return;
    close();
    const auto now = HostClock::now();
    m_failures = now - m_opened >= soundLife ? 1 : m_failures + 1;
    if (m_failures >= failuresOfAMoment)
        refuse(error.what());
    const auto wait = m_failures < failuresOfAMoment ? shortWait : longWait;
    m_retryAt = now + wait;
    m_actions.retryIn(wait);
    report();
}

void DeviceSlot::refuse(const std::string& reason)
{
    m_refusal = m_device->name + ": " + reason + ". " + m_options.advice;
}

/// A device that nobody looks at has no trouble.
void DeviceSlot::report()
{
    std::optional<std::string> trouble;
    if (m_shouldRun && m_presence == Presence::Gone)
        trouble = m_device->name + " is gone. Everything else goes on, and so does it when it is back.";
    else if (const std::string refused = refusal(); m_shouldRun && !refused.empty())
        trouble = refused;
    if (std::exchange(m_told, trouble) != trouble)
        m_actions.tell(trouble);
}

} // namespace vantry
