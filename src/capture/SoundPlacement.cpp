#include "capture/SoundPlacement.h"

#include <algorithm>
#include <cassert>
#include <cmath>

namespace vantry {

namespace {

/// Stamps tremble by less than this; a server that lost a cycle is off by more.
constexpr SampleCount jumpFrom(sampleRate / 100);

/// Smoothed drift from which on it is corrected: half a millisecond.
constexpr double correctedFrom = sampleRate / 2000.0;

/// How slowly the drift follows the stamps, in pieces.
constexpr double smoothing = 64;

/// At most one sample is put in or left out among so many, 3 cents of pitch.
constexpr std::size_t samplesPerCorrection = 500;

constexpr SampleCount silencePiece(sampleRate);

void cutFront(Sound& sound, SampleCount length)
{
    const auto samples = std::min(sound.samples.size(), static_cast<std::size_t>(length.count() * sound.channels));
    sound.samples.erase(sound.samples.begin(), sound.samples.begin() + static_cast<std::ptrdiff_t>(samples));
}

Sound stretched(const Sound& sound, std::size_t frames)
{
    Sound result{ .channels = sound.channels, .samples = {} };
    const auto channels = static_cast<std::size_t>(sound.channels);
    result.samples.reserve(frames * channels);
    const double step = static_cast<double>(sound.frames()) / static_cast<double>(frames);
    for (std::size_t i = 0; i < frames; ++i) {
        const double position = static_cast<double>(i) * step;
        const auto before = static_cast<std::size_t>(position);
        const auto after = std::min(before + 1, sound.frames() - 1);
        const auto share = static_cast<float>(position - std::floor(position));
        for (std::size_t channel = 0; channel < channels; ++channel)
            result.samples.push_back(
                std::lerp(sound.samples[before * channels + channel], sound.samples[after * channels + channel], share));
    }
    return result;
}

} // namespace

SoundPlacement::SoundPlacement(int channels)
    : m_channels(channels)
{
}

void SoundPlacement::place(Sound sound, HostDuration at, const Sink& sink)
{
    assert(sound.channels == m_channels);
    const SampleCount distance = std::chrono::round<SampleCount>(at) - m_next;
    if (!m_isPlaced || std::chrono::abs(distance) > jumpFrom)
        jump(sound, distance, sink);
    else
        follow(sound, distance);
    hand(sound, sink);
}

void SoundPlacement::finish(SampleCount end, const Sink& sink)
{
    fill(end - m_next, sink);
}

void SoundPlacement::jump(Sound& sound, SampleCount distance, const Sink& sink)
{
    if (distance > SampleCount::zero())
        fill(distance, sink);
    else
        cutFront(sound, -distance);
    m_isPlaced = m_isPlaced || !sound.samples.empty();
    m_drift = 0;
}

void SoundPlacement::follow(Sound& sound, SampleCount distance)
{
    m_drift += (static_cast<double>(distance.count()) - m_drift) / smoothing;
    m_sinceCorrection += sound.frames();
    if (std::abs(m_drift) < correctedFrom || m_sinceCorrection < samplesPerCorrection)
        return;
    m_sinceCorrection = 0;
    const auto most = static_cast<double>(std::max<std::size_t>(sound.frames() / samplesPerCorrection, 1));
    const auto correction = static_cast<std::ptrdiff_t>(std::clamp(std::trunc(m_drift), -most, most));
    sound = stretched(sound, sound.frames() + static_cast<std::size_t>(correction));
    m_drift -= static_cast<double>(correction);
}

void SoundPlacement::hand(const Sound& sound, const Sink& sink)
{
    if (sound.samples.empty())
        return;
    sink(sound);
    m_next += sound.length();
}

void SoundPlacement::fill(SampleCount length, const Sink& sink)
{
    while (length > SampleCount::zero()) {
        const auto piece = std::min(length, silencePiece);
        hand({ .channels = m_channels, .samples = std::vector<float>(static_cast<std::size_t>(piece.count() * m_channels)) }, sink);
        length -= piece;
    }
}

} // namespace vantry
