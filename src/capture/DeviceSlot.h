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
/// refuses is tried again, and so is one that falls silent. One thread at a time.
class DeviceSlot {
public:
    /// An open device; closed with the last owner.
    using Stream = std::shared_ptr<void>;

    struct Actions {
        /// Opens the device; `fail` is called with this number when the stream later ends by itself. Throws AppError.
        std::function<Stream(const MediaDevice& device, std::uint64_t number)> open;

        /// When the open device was heard of last.
        std::function<HostTime()> lastSign;

        /// What the user should know has changed: nothing when all is well.
        std::function<void(const std::optional<std::string>& trouble)> tell;

        /// Asks for an `update` after this time.
        std::function<void(HostDuration)> retryIn;
    };

    struct Options {
        HostDuration longestSilence; ///< Of an open device that is well.
        std::string silence; ///< What is wrong with one that is silent for longer.
        std::string advice; ///< What the user can do about a device that is refused or silent.
    };

    DeviceSlot(Options options, Actions actions)
        : m_options(std::move(options))
        , m_actions(std::move(actions))
    {
    }

    /// Which device it should be. Nothing happens when it is that one already.
    void want(const std::optional<std::string>& id);

    /// Opens or closes, by the devices that there are now. To be called when these change, and when `retryIn` has asked for it.
    void update(const std::vector<MediaDevice>& there, bool shouldRun);

    /// The stream with this number has ended.
    void fail(std::uint64_t number, const AppError& error);

    /// The device was there since it is wanted.
    bool isTaken() const { return m_device.has_value(); }
    bool isOpen() const { return m_stream != nullptr; }

    /// For the user: why the device, which is there, gives nothing and did not before. Empty when all is well.
    std::string refusal() const;

private:
    enum class Presence { There, Gone };

    bool isHeard() const { return m_actions.lastSign() >= m_opened; }
    void notePresence(const MediaDevice* device);
    void forgiveFailures();
    void open();
    void close();
    void watch();
    void refuse(const std::string& reason);
    void report();

    const Options m_options;
    const Actions m_actions;
    std::optional<std::string> m_wanted;
    std::optional<MediaDevice> m_device;
    bool m_shouldRun = false;
    Presence m_presence = Presence::There;
    Stream m_stream;
    std::uint64_t m_number = 0;
    HostTime m_opened;
    HostTime m_retryAt;
    int m_failures = 0; ///< In a row.
    int m_silences = 0; ///< The same, of those that were silence.
    std::string m_refusal;
    std::optional<std::string> m_told;
};

} // namespace vantry
