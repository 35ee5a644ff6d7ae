#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vantry {

class PipeWireLoop;

/// A camera or a microphone.
struct MediaDevice {
    std::string id; ///< The same after the device was unplugged or the server restarted; what streams are opened with.
    std::string name; ///< For the user.

    bool operator==(const MediaDevice&) const = default;
};

/// The devices there are at one moment.
struct MediaDeviceList {
    std::vector<MediaDevice> cameras;
    std::vector<MediaDevice> microphones; ///< Virtual ones too, but not what is played.
    std::optional<std::string> defaultMicrophone; ///< The identifier of the system's choice.

    bool hasCamera(const std::string& id) const;
    bool hasMicrophone(const std::string& id) const;

    bool operator==(const MediaDeviceList&) const = default;
};

/// Keeps the list of devices up to date while they come and go. Safe to use from any thread; destroyed before the loop, and not on
/// its thread.
class MediaDevices {
public:
    /// Called on the loop's thread: with the first list when the server has told it, and after each change.
    using ChangeHandler = std::function<void(const MediaDeviceList&)>;

    explicit MediaDevices(PipeWireLoop& loop, ChangeHandler onChange = {});
    ~MediaDevices(); ///< The handler is not called any more when it returns.

    /// Nothing until the server has told what there is.
    std::optional<MediaDeviceList> list() const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantry
