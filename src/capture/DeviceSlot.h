#pragma once

#include "base/AppError.h"
#include "base/HostTime.h"
#include "platform/MediaDevices.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// Keeps one device open while it is wanted, runs and is there: a device that went away is taken up again when it is back, one that
/// refuses is tried again. One thread at a time.
class DeviceSlot {
public:
    /// An open device; closed with the last owner.
    using Stream = std::shared_ptr<void>;

    struct Actions {
        /// Opens the device; `fail` is called with this number when the stream later ends by itself. Throws AppError.
        std::function<Stream(const MediaDevice& device, std::uint64_t number)> open;

        /// What the user should know.
        std::function<void(const std::string& text)> tell;

        /// Asks for an `update` after this time.
        std::function<void(HostDuration)> retryIn;
    };

    explicit DeviceSlot(Actions actions)
        : m_actions(std::move(actions))
    {
    }

    /// Which device it should be. Nothing happens when it is that one already.
    void want(const std::optional<std::string>& id);

    /// Opens or closes, by the devices that there are now.
    void update(const std::vector<MediaDevice>& there, bool shouldRun);

    /// The stream with this number has ended.
    void fail(std::uint64_t number, const AppError& error);

    /// The open stream, if there is one, should have been heard of since it was opened or since `lastSign`, and no longer ago than
    /// `longest`; otherwise it has failed with this error. Asks for an `update` when it should be looked at again.
    void expectSigns(HostTime lastSign, HostDuration longest, const AppError& otherwise);

    /// The device was there since it is wanted.
    bool isTaken() const { return m_device.has_value(); }
    bool isOpen() const { return m_stream != nullptr; }

    /// For the user: why the device, which is there, is refused and was before. Empty when all is well.
    std::string refusal() const;

private:
    enum class Presence { There, Gone };

    void notePresence(const MediaDevice* device, bool shouldRun);
    void forgiveFailures();
    void open();
    void close();

    const Actions m_actions;
    std::optional<std::string> m_wanted;
    std::optional<MediaDevice> m_device;
    Presence m_presence = Presence::There;
    Stream m_stream;
    std::uint64_t m_number = 0;
    HostTime m_opened;
    HostTime m_retryAt;
    std::optional<HostTime> m_lastSign; ///< None where none are expected.
    int m_failures = 0; ///< In a row.
    std::string m_refusal;
};

} // namespace vantry
