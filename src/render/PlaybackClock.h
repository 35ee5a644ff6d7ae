#pragma once

#include "base/HostTime.h"
#include "render/PlayedSound.h"

namespace vantry {

/// Says where playback is, and lets its sound be heard. The sound leads: playback is where the ear is. While no sound comes out,
/// for the composition has none or the system no output, time itself goes on from there, and sound that comes back joins in.
/// Belongs to one thread.
class PlaybackClock {
public:
    void start(const CompositionPlan& plan, MediaTime position);

    /// Another composition is played from where playback is. Sound that is the same in both goes on.
    void goOnWith(const CompositionPlan& plan);
    void stop();

    bool isRunning() const { return m_isRunning; }

    /// Never goes back until the next start. Throws AppError when the sound cannot be read.
    MediaTime position();

private:
    enum class Leader {
        None, ///< The sound is awaited.
        Sound,
        Time,
    };

    void follow(Leader leader, MediaTime position, HostTime now);
    void playSound(MediaTime from);
    void followSound(MediaTime heard, HostTime now);
    MediaTime byTime(HostTime now) const { return m_position + mediaTime(now - m_positionTime); }

    PlayedSound m_sound;
    CompositionPlan m_plan;
    bool m_isRunning = false;
    Leader m_leader = Leader::Time;
    bool m_isSoundExpected = true; ///< It was heard the last time, or never tried.
    HostTime m_started;

    // Where playback was, and when that was.
    MediaTime m_position{};
    HostTime m_positionTime;

    MediaTime m_latest{}; ///< What was said last.
};

} // namespace vantry
