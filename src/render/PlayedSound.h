#pragma once

#include "base/Worker.h"
#include "media/MediaTime.h"
#include "platform/PipeWireLoop.h"
#include "platform/SoundOutput.h"
#include "render/AudioMix.h"
#include "render/CompositionPlan.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>

namespace vantry {

/// Lets a composition's sound be heard on the system's output, and knows how far it was heard. A thread of its own mixes it as the
/// export does, a little ahead. Where there is no output nothing is heard, and the next time it is looked for again. Belongs to one
/// thread.
class PlayedSound {
public:
    PlayedSound();
    ~PlayedSound();

    PlayedSound(const PlayedSound&) = delete;
    PlayedSound& operator=(const PlayedSound&) = delete;

    /// Begins with the sound at `from`; what is heard until then goes on.
    void play(const CompositionPlan& plan, MediaTime from);
    void stop();

    /// The composition's time that is heard now; nothing until something of what was begun last is heard, and when the output is
    /// gone. Throws AppError when the sound cannot be read.
    std::optional<MediaTime> heard() const;

private:
    /// What is played: which of the output's samples is the first, and where it stands in the composition.
    struct Stretch {
        std::uint64_t order = 0;
        std::int64_t firstSample = 0;
        MediaTime from{};
    };

    void feed(const CompositionPlan& plan, MediaTime from, std::uint64_t order);
    void open();
    void close();
    bool begin(const Stretch& stretch);
    bool write(const Sound& sound, const Stretch& stretch);

    std::atomic<bool> m_isLost = false; ///< The output cannot be used any more.
    std::unique_ptr<PipeWireLoop> m_loop; ///< Belongs to the worker.

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;

    // Guarded by the mutex.
    std::uint64_t m_order = 0; ///< Counts what was begun and stopped; only the newest is of interest.
    Stretch m_stretch;
    std::exception_ptr m_problem; ///< Of the newest.
    std::unique_ptr<SoundOutput> m_output; ///< Changed by the worker only.

    Worker m_worker{ "player-sound" };
};

} // namespace vantry
