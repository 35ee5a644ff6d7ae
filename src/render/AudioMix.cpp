#include "render/AudioMix.h"

#include <algorithm>

namespace vantry {

AudioMix::AudioMix(const CompositionPlan& plan, SampleCount from, DamageLog* damage)
    : m_microphone(plan.segmentsOf(TrackKind::audio), from, damage)
    , m_system(plan.segmentsOf(TrackKind::system), from, damage)
    , m_systemVolume(plan.systemVolume)
{
}

Sound AudioMix::next(SampleCount length)
{
    Sound mix{ .channels = TrackSound::channels, .samples = {} };
    mix.samples.resize(static_cast<std::size_t>(length.count() * TrackSound::channels));
    m_microphone.addTo(mix, 1);
    m_system.addTo(mix, m_systemVolume);
    for (auto& sample : mix.samples)
        sample = std::clamp(sample, -1.0f, 1.0f);
    return mix;
}

} // namespace vantry
