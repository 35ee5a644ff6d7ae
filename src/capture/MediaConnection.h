#pragma once

#include "platform/MediaDevices.h"
#include "platform/PipeWireLoop.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace vantry {

/// The connection to the media server for camera and microphone: made when it is first asked for and again when it was lost. Knows
/// the devices, and whether the server answers. Never waits for it. Belongs to one thread.
class MediaConnection {
public:
    struct Actions {
        /// There is something new: asks for an `update`. On a thread of the connection.
        std::function<void()> onNews;

        /// Asks for an `update` after this time.
        std::function<void(HostDuration)> retryIn;
    };

    explicit MediaConnection(Actions actions)
        : m_actions(std::move(actions))
    {
    }

    /// Connects, or again. While somebody wants something of the server, it is asked whether it is there.
    void update(bool isWanted);

    /// The server has ended the connection. What uses it is to be destroyed, and then `close` to be called.
    bool isLost() const;
    void close();

    /// While there is a connection only.
    PipeWireLoop& loop() { return *m_loop; }

    /// Nothing while they are not known.
    std::optional<MediaDeviceList> devices() const;

    /// For the user: why nothing comes from the server.
    const std::optional<std::string>& trouble() const { return m_trouble; }

private:
    void connect();
    void watch(bool isWanted);
    void lose(const std::string& reason);

    const Actions m_actions;
    std::optional<std::string> m_trouble;
    HostTime m_retryAt;

    mutable std::mutex m_mutex;
    std::optional<std::string> m_loss; ///< Why the connection was lost. Guarded by the mutex.

    std::unique_ptr<PipeWireLoop> m_loop;
    std::unique_ptr<MediaDevices> m_devices;
};

} // namespace vantry
