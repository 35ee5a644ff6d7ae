#pragma once

#include "render/TrackSound.h"

namespace vantry {

/// A composition's sounds as one: the microphone as it was recorded, other applications at the project's volume. One thread at a
/// time.
class AudioMix {
public:
    /// Damage is noted where that is wanted; the log outlives the object.
    explicit AudioMix(const CompositionPlan& plan, SampleCount from = {}, DamageLog* damage = nullptr);

    /// The next stretch in stereo, from `from` on; never louder than full scale. Throws AppError.
    Sound next(SampleCount length);

private:
    TrackSound m_microphone;
    TrackSound m_system;
    const float m_systemVolume;
};

} // namespace vantry
