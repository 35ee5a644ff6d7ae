#pragma once

#include "base/HostTime.h"
#include "media/Sound.h"

#include <functional>

namespace vantry {

/// Makes one unbroken stretch of sound out of pieces that carry the time they were taken at.
///
/// A piece that is about where the one before it ended follows it without a seam; when a clock that runs a little fast or slow
/// leads the stamps away, pieces are stretched or squeezed by a few samples, too little to be heard, until they are where they
/// belong. A piece that is further off is put where its stamp says: silence fills the gap, what would lie over earlier sound is cut
/// off. One thread at a time.
class SoundPlacement {
public:
    using Sink = std::function<void(const Sound&)>;

    explicit SoundPlacement(int channels);

    /// `at` is when the piece begins, since the start; what lies before that is cut off.
    void place(Sound sound, HostDuration at, const Sink& sink);

    /// Fills with silence up to `end`.
    void finish(SampleCount end, const Sink& sink);

private:
    void jump(Sound& sound, SampleCount distance, const Sink& sink);
    void follow(Sound& sound, SampleCount distance);
    void hand(const Sound& sound, const Sink& sink);
    void fill(SampleCount length, const Sink& sink);

    const int m_channels;
    SampleCount m_next{}; ///< Where the next sample goes.
    bool m_isPlaced = false; ///< Something has been placed by its stamp.
    double m_drift = 0; ///< How far the stamps are ahead of what was placed, smoothed, in samples.
    std::size_t m_sinceCorrection = 0; ///< Samples.
};

} // namespace vantry
