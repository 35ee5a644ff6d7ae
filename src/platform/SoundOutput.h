#pragma once

#include "base/AppError.h"
#include "base/HostTime.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace vantry {

class PipeWireLoop;

/// Plays sound on the system's output while it exists, whichever that is: two channels interleaved, 48000 samples a second, floats.
/// A sample is one float for each channel; samples are counted from 0 on as they are written. When there is no output, nothing is
/// taken. Opened and closed on any thread but the loop's; the loop must outlive it.
class SoundOutput {
public:
    static constexpr int channels = 2;
    static constexpr int sampleRate = 48000;

    /// Begins to open the output. `onFailed`: it can no longer be used, or could not at all; once, on the loop's thread. Throws
    /// AppError when that fails at once.
    SoundOutput(PipeWireLoop& loop, std::function<void(const AppError&)> onFailed);
    ~SoundOutput();

    // For the thread that writes.

    /// What was written is heard from now on, and where nothing was written, silence. Before that the output rests.
    void start();
    void stop();

    /// Takes as many samples as there is room for, about a second's, and says how many. Never waits.
    std::int64_t write(std::span<const float> samples);

    /// Forgets what was written and is not yet on its way to the device.
    void discard();

    std::int64_t written() const;

    // For any thread.

    /// The number of the next sample that will be on its way to the device.
    std::int64_t reached() const;

    /// The number of the sample that is heard at `time`, which is about now; nothing while the device takes no sound. Ahead of
    /// everything that was written when all of it was heard.
    std::optional<std::int64_t> heardAt(HostTime time) const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace vantry
