#include "capture/MediaConnection.h"

#include <algorithm>
#include <utility>

namespace vantry {

using namespace std::chrono_literals;

namespace {

constexpr HostDuration reconnectWait = 1s;
constexpr HostDuration longestAnswer = 3s;
constexpr HostDuration askInterval = 1s;

/// Of a server that answers again.
constexpr HostDuration glance = 100ms;

} // namespace

void MediaConnection::update(bool isWanted)
{
    if (!m_loop && HostClock::now() >= m_retryAt)
        connect();
    if (m_loop)
        watch(isWanted || !devices());
    else
        m_actions.retryIn(reconnectWait);
}

void MediaConnection::connect()
{
    try {
        m_loop = std::make_unique<PipeWireLoop>("vantry.media", [this](const AppError& error) { lose(error.what()); });
        m_devices = std::make_unique<MediaDevices>(*m_loop, [this](const MediaDeviceList&) { m_actions.onNews(); });
        m_trouble.reset();
    } catch (const AppError& error) {
        m_retryAt = HostClock::now() + reconnectWait;
        if (!m_trouble)
            m_trouble = std::string(error.what()) + ". Start PipeWire to record camera and microphone.";
    }
}

void MediaConnection::watch(bool isWanted)
{
    m_trouble.reset();
    if (!isWanted)
        return;
    m_loop->askServer();
    const HostDuration owed = m_loop->owedByServer();
    if (owed >= longestAnswer)
        m_trouble = "The media server does not answer: camera and microphone are not recorded.";
    m_actions.retryIn(m_trouble ? glance : std::min(askInterval, longestAnswer - owed));
}

/// On the loop's thread, which cannot end the loop.
void MediaConnection::lose(const std::string& reason)
{
    {
        const std::lock_guard guard(m_mutex);
        m_loss = reason;
    }
    m_actions.onNews();
}

bool MediaConnection::isLost() const
{
    const std::lock_guard guard(m_mutex);
    return m_loss.has_value();
}

void MediaConnection::close()
{
    m_devices.reset();
    m_loop.reset();
    const std::lock_guard guard(m_mutex);
    if (m_loss)
        m_trouble = std::exchange(m_loss, std::nullopt);
    m_retryAt = HostClock::now() + reconnectWait;
}

std::optional<MediaDeviceList> MediaConnection::devices() const
{
    return m_devices ? m_devices->list() : std::nullopt;
}

} // namespace vantry
