#include "capture/DeviceSlot.h"

#include <algorithm>

namespace vantry {

using namespace std::chrono_literals;

namespace {

/// Just plugged in or given back, a device may be refused for a moment; the user is told when it lasts.
constexpr int failuresOfAMoment = 4;
constexpr HostDuration shortWait = 250ms;
constexpr HostDuration longWait = 2s;

/// A stream that lived this long had not failed to open.
constexpr HostDuration soundLife = 5s;
constexpr HostDuration openingTime = 1s;

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
}

void DeviceSlot::update(const std::vector<MediaDevice>& there, bool shouldRun)
{
    const auto device = m_wanted ? std::ranges::find(there, *m_wanted, &MediaDevice::id) : there.end();
    const bool isThere = device != there.end();
    notePresence(isThere ? &*device : nullptr, shouldRun);
    if (!shouldRun)
        forgiveFailures();
    if (!isThere || !shouldRun)
        return close();
    if (!m_stream && HostClock::now() >= m_retryAt)
        open();
}

void DeviceSlot::notePresence(const MediaDevice* device, bool shouldRun)
{
    const bool wasTaken = isTaken();
    if (device)
        m_device = *device;
    const auto presence = device || !wasTaken ? Presence::There : Presence::Gone;
    if (presence == m_presence)
        return;
    m_presence = presence;
    forgiveFailures();
    if (shouldRun)
        m_actions.tell(m_device->name
            + (presence == Presence::Gone ? " is gone. Everything else goes on, and so does it when it is back." : " is back."));
}

std::string DeviceSlot::refusal() const
{
    const bool isHeard = m_lastSign ? *m_lastSign >= m_opened : HostClock::now() - m_opened >= openingTime;
    const bool isWell = m_stream && isHeard;
    return isWell || m_failures < failuresOfAMoment ? std::string() : m_refusal;
}

void DeviceSlot::forgiveFailures()
{
    m_failures = 0;
    m_retryAt = {};
}

void DeviceSlot::open()
{
    const auto number = ++m_number;
    m_opened = HostClock::now();
    try {
        m_stream = m_actions.open(*m_device, number);
    } catch (const AppError& error) {
        fail(number, error);
    }
}

void DeviceSlot::close()
{
    m_stream.reset();
    ++m_number;
}

void DeviceSlot::expectSigns(HostTime lastSign, HostDuration longest, const AppError& otherwise)
{
    m_lastSign = lastSign;
    if (!m_stream)
        return;
    const HostDuration silence = HostClock::now() - std::max(lastSign, m_opened);
    if (silence < longest)
        return m_actions.retryIn(longest - silence);
    // That was no moment.
    if (m_failures < failuresOfAMoment)
        m_failures = failuresOfAMoment - 1;
    fail(m_number, otherwise);
}

void DeviceSlot::fail(std::uint64_t number, const AppError& error)
{
    if (number != m_number)
        return;
    close();
    const auto now = HostClock::now();
    m_failures = now - m_opened >= soundLife ? 1 : m_failures + 1;
    if (m_failures == failuresOfAMoment) {
        m_refusal = m_device->name + ": " + error.what() + ". Close what else uses it, or choose another one.";
        m_actions.tell(m_refusal);
    }
    const auto wait = m_failures < failuresOfAMoment ? shortWait : longWait;
    m_retryAt = now + wait;
    m_actions.retryIn(wait);
}

} // namespace vantry
