#include "render/PlaybackClock.h"

#include <algorithm>
#include <utility>

namespace vantry {

namespace {

/// An output that sleeps needs a while. Beginning without the sound would cut off the first word.
constexpr HostDuration longestAwaited = std::chrono::milliseconds(600);

/// Sound that comes back further off than this begins anew where playback is.
constexpr MediaTime nearEnough = std::chrono::milliseconds(150);

bool soundTheSame(const CompositionPlan& one, const CompositionPlan& other)
{
    return one.segmentsOf(TrackKind::audio) == other.segmentsOf(TrackKind::audio)
        && one.segmentsOf(TrackKind::system) == other.segmentsOf(TrackKind::system) && one.systemVolume == other.systemVolume
        && one.duration == other.duration;
}

} // namespace

void PlaybackClock::start(const CompositionPlan& plan, MediaTime position)
{
    m_plan = plan;
    m_isRunning = true;
    m_latest = position;
    m_started = HostClock::now();
    const bool isSoundAwaited = plan.hasSound() && m_isSoundExpected;
    follow(isSoundAwaited ? Leader::None : Leader::Time, position, m_started);
    playSound(position);
}

void PlaybackClock::goOnWith(const CompositionPlan& plan)
{
    if (soundTheSame(std::exchange(m_plan, plan), plan))
        return;
    const auto now = HostClock::now();
    follow(Leader::Time, position(), now);
    playSound(m_position);
}

void PlaybackClock::stop()
{
    m_isRunning = false;
    m_sound.stop();
}

MediaTime PlaybackClock::position()
{
    const auto now = HostClock::now();
    if (const auto heard = m_sound.heard()) {
        followSound(*heard, now);
    } else if (m_leader == Leader::Sound) {
        m_leader = Leader::Time;
    } else if (m_leader == Leader::None && now - m_started > longestAwaited) {
        m_isSoundExpected = false;
        follow(Leader::Time, m_position, now);
    }
    const auto position = m_leader == Leader::None ? m_position : byTime(now);
    return m_latest = std::max(m_latest, position);
}

void PlaybackClock::follow(Leader leader, MediaTime position, HostTime now)
{
    m_leader = leader;
    m_position = position;
    m_positionTime = now;
}

void PlaybackClock::playSound(MediaTime from)
{
    if (m_plan.hasSound())
        m_sound.play(m_plan, from);
    else
        m_sound.stop();
}

void PlaybackClock::followSound(MediaTime heard, HostTime now)
{
    m_isSoundExpected = true;
    if (m_leader != Leader::Time || std::chrono::abs(heard - byTime(now)) < nearEnough)
        follow(Leader::Sound, heard, now);
    else
        playSound(byTime(now));
}

} // namespace vantry
