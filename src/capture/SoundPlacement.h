#pragma once

#include "base/HostTime.h"
#include "capture/DriftResampler.h"
#include "media/Sound.h"

#include <functional>

namespace vantry {

/// Makes one unbroken stretch of sound out of pieces that carry the time they were taken at.
///
/// A piece that is about where the one before it ended follows it without a seam. When a clock that runs fast or slow leads the
/// stamps away, all that follows is played a little slower or faster, too little to be heard, so that the sound stays where it
/// belongs. A piece that is further off is put where its stamp says: silence fills the gap, what would lie over earlier sound is
/// cut off. One thread at a time.
class SoundPlacement {
public:
    using Sink = std::function<void(const Sound&)>;

    explicit SoundPlacement(int channels);

    /// `at` is when the piece begins, since the start; what lies before that is cut off. A last bit of it may be given out only
    /// with the next piece.
    void place(Sound sound, HostDuration at, const Sink& sink);

    /// Gives out what is left and fills with silence up to `end`. What is placed later may not lie before that.
    void fillUntil(SampleCount end, const Sink& sink);

private:
    void jump(Sound sound, HostDuration at, const Sink& sink);
    double stepFor(const Sound& sound, double error);
    void hand(const Sound& sound, const Sink& sink);
    void fill(SampleCount length, const Sink& sink);

    const int m_channels;
    DriftResampler m_resampler;
    SampleCount m_next{}; ///< Where the next sample goes.
    bool m_isPlaced = false; ///< Something has been placed by its stamp.
    double m_error = 0; ///< How far the stamps are ahead of what is placed, smoothed, in samples.
    double m_drift = 0; ///< How much further that is with every second, in samples.
};

} // namespace vantry
