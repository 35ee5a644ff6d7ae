#pragma once

#include "base/AppError.h"
#include "base/Descriptor.h"
#include "base/HelperProcess.h"
#include "base/OverlayProtocol.h"
#include "base/WakeUp.h"
#include "render/Bitmap.h"

#include <array>
#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

namespace vantry {

/// A warning in the log that an overlay will be missing, and why.
void warnOfMissingOverlay(overlays::Outcome);

/// What the helper was asked takes it too long.
class HangingHelper : public AppError {
public:
    using AppError::AppError;
};

/// A running helper program. What goes wrong is an AppError; the helper is of no use any more then. One thread at a time, which
/// must live on: the helper ends with the thread that started it. Destroying it ends the helper.
class OverlayHelper {
public:
    /// Where the program is: beside ours, else where it was built.
    static std::filesystem::path program();

    /// `interrupt` makes a rendering fail at once; it outlives the helper.
    OverlayHelper(const std::filesystem::path& program, const WakeUp& interrupt);

    struct Rendering {
        overlays::Outcome outcome = overlays::Outcome::Failed;
        std::optional<Bitmap> bitmap{};
    };

    /// The fragment's bitmap, or why the helper, which is ready for the next one, could not make it. The time that the helper takes
    /// to start does not count. Throws HangingHelper when it takes longer.
    Rendering render(const std::string& fragment, double cssWidth, std::chrono::milliseconds longest);

    /// False once it has ended, whatever it ended of.
    bool isRunning() const { return m_process.isRunning(); }

private:
    /// Our end and the helper's.
    using Connection = std::array<Descriptor, 2>;
    using Deadline = std::chrono::steady_clock::time_point;

    OverlayHelper(const std::filesystem::path& program, const WakeUp& interrupt, Connection connection);
    void awaitStart();
    void send(const void* bytes, std::size_t size, Deadline deadline) const;
    void receive(void* bytes, std::size_t size, Deadline deadline) const;
    void waitFor(short events, Deadline deadline) const;

    const WakeUp& m_interrupt;
    const Descriptor m_socket;
    HelperProcess m_process;
    bool m_hasStarted = false;
};

} // namespace vantry
