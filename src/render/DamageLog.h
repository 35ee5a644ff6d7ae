#pragma once

#include "media/Damage.h"
#include "render/CompositionPlan.h"

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace vantry {

/// What could not be read of a composition's clips: the pictures before it stood still, or there was no sound. Times are the
/// composition's.
struct Damage {
    enum class Of { Pictures, Sound };

    std::string clip; ///< Its file's name.
    Of of = Of::Pictures;
    TimeRange range;
};

/// Where damage is noted while a composition is read. Safe to use from any thread.
class DamageLog {
public:
    /// The source times that were left out in a segment; what lies outside of it is of no interest.
    void add(const Segment& segment, TimeRange source);

    /// By time; what is close together is one.
    std::vector<Damage> found() const;

private:
    using Track = std::pair<std::string, Damage::Of>;

    mutable std::mutex m_mutex;
    std::map<Track, std::map<MediaTime, MediaTime>> m_ranges; ///< From and to, free of overlaps. Guarded by the mutex.
};

/// For a reader of the segment. The log, which may be none, and the segment outlive it.
DamageSink damageOf(const Segment& segment, DamageLog* log);

} // namespace vantry
