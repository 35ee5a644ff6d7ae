#include "capture/SoundPlacement.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>

namespace vantry {

namespace {

/// Stamps tremble by less than this, and drift is made up for long before; a server that lost a cycle is off by more.
constexpr double jumpFrom = sampleRate / 200.0;

/// An error up to here (half a millisecond, smoothed) is nothing to be made up for: a true clock's sound passes unchanged.
constexpr double tolerated = sampleRate / 2000.0;

/// How slowly the error follows the stamps, in seconds.
constexpr double smoothing = 1;

/// The share of the error beyond what is tolerated that is made up for in a second, and the share of it that is taken for the
/// clock's drift: together they come to rest within some ten seconds, without swinging.
constexpr double errorShare = 0.4;
constexpr double driftShare = 0.04;

/// At most this many samples a second are put in or left out: half a hundredth, 9 cents of pitch.
constexpr double mostCorrection = sampleRate / 200.0;

constexpr SampleCount silencePiece(sampleRate);

void cutFront(Sound& sound, SampleCount length)
{
    const auto samples = std::min(sound.samples.size(), static_cast<std::size_t>(length.count() * sound.channels));
    sound.samples.erase(sound.samples.begin(), sound.samples.begin() + static_cast<std::ptrdiff_t>(samples));
}

/// What of the error lies beyond what is tolerated.
double excess(double error)
{
    return error - std::clamp(error, -tolerated, tolerated);
}

} // namespace

SoundPlacement::SoundPlacement(int channels)
    : m_channels(channels)
    , m_resampler(channels)
{
}

void SoundPlacement::place(Sound sound, HostDuration at, const Sink& sink)
{
    assert(sound.channels == m_channels);
    const double error = seconds(at) * sampleRate - (static_cast<double>(m_next.count()) + m_resampler.held());
    if (!m_isPlaced || std::abs(error) > jumpFrom)
        return jump(std::move(sound), at, sink);
    const double step = stepFor(sound, error);
    hand(m_resampler.resample(sound, step), sink);
}

void SoundPlacement::fillUntil(SampleCount end, const Sink& sink)
{
    hand(m_resampler.drain(), sink);
    fill(end - m_next, sink);
}

void SoundPlacement::jump(Sound sound, HostDuration at, const Sink& sink)
{
    hand(m_resampler.drain(), sink);
    const SampleCount distance = std::chrono::round<SampleCount>(at) - m_next;
    if (distance > SampleCount::zero())
        fill(distance, sink);
    else
        cutFront(sound, -distance);
    m_isPlaced = m_isPlaced || !sound.samples.empty();
    m_error = 0;
    hand(m_resampler.resample(sound, stepFor(sound, 0)), sink);
}

/// How many samples to take for each that is given: about one.
double SoundPlacement::stepFor(const Sound& sound, double error)
{
    const double length = static_cast<double>(sound.frames()) / sampleRate;
    m_error += (error - m_error) * -std::expm1(-length / smoothing);
    m_drift = std::clamp(m_drift + excess(m_error) * driftShare * length, -mostCorrection, mostCorrection);
    const double correction = std::clamp(m_drift + excess(m_error) * errorShare, -mostCorrection, mostCorrection);
    return 1 - correction / sampleRate;
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
