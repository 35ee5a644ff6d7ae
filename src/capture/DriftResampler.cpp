#include "capture/DriftResampler.h"

#include <array>
#include <cmath>
#include <numbers>

namespace vantry {

namespace {

constexpr int taps = 2 * DriftResampler::reach;
constexpr int phases = 256;

using Kernel = std::array<float, taps>;

double windowedSinc(double distance)
{
    if (std::abs(distance) < 1e-9)
        return 1;
    const double angle = std::numbers::pi * distance;
    const double hann = 0.5 + 0.5 * std::cos(angle / DriftResampler::reach);
    return std::abs(distance) < DriftResampler::reach ? hann * std::sin(angle) / angle : 0;
}

/// For each phase between a sample and the next one, both included, what the samples around contribute. They add up to one.
std::array<Kernel, phases + 1> makeKernels()
{
    std::array<Kernel, phases + 1> kernels{};
    for (int phase = 0; phase <= phases; ++phase) {
        Kernel& kernel = kernels[static_cast<std::size_t>(phase)];
        double sum = 0;
        for (int tap = 0; tap < taps; ++tap) {
            const double share = windowedSinc(tap - (DriftResampler::reach - 1) - static_cast<double>(phase) / phases);
            kernel[static_cast<std::size_t>(tap)] = static_cast<float>(share);
            sum += share;
        }
        for (float& share : kernel)
            share = static_cast<float>(share / sum);
    }
    return kernels;
}

/// What a sample at `position` is made from, beginning `reach` - 1 samples ahead of `before`, the sample before it.
Kernel kernelAt(double position, std::size_t before)
{
    static const auto kernels = makeKernels();
    const double phase = (position - static_cast<double>(before)) * phases;
    const auto index = static_cast<std::size_t>(phase);
    const auto share = static_cast<float>(phase - static_cast<double>(index));
    const Kernel& from = kernels[index];
    const Kernel& to = kernels[index + 1];
    Kernel kernel;
    for (std::size_t tap = 0; tap < kernel.size(); ++tap)
        kernel[tap] = from[tap] + share * (to[tap] - from[tap]);
    return kernel;
}

/// Summed by halves, which a compiler does many at a time.
float weighted(const Kernel& kernel, const float* samples)
{
    Kernel sums;
    for (std::size_t tap = 0; tap < sums.size(); ++tap)
        sums[tap] = kernel[tap] * samples[tap];
    for (std::size_t half = sums.size() / 2; half > 0; half /= 2)
        for (std::size_t tap = 0; tap < half; ++tap)
            sums[tap] += sums[tap + half];
    return sums[0];
}

} // namespace

DriftResampler::DriftResampler(int channels)
    : m_windows(static_cast<std::size_t>(channels))
{
    beginAnew();
}

Sound DriftResampler::resample(const Sound& piece, double step)
{
    take(piece);
    Sound result{ .channels = piece.channels, .samples = {} };
    result.samples.reserve(piece.samples.size() + m_windows.size() * taps);
    if (step == 1 && m_position == std::floor(m_position))
        passUnchanged(result);
    for (; m_position + reach < static_cast<double>(frames()); m_position += step)
        interpolate(result);
    forgetWhatIsBehind();
    return result;
}

Sound DriftResampler::drain()
{
    Sound result{ .channels = static_cast<int>(m_windows.size()), .samples = {} };
    const auto end = static_cast<double>(frames());
    for (auto& window : m_windows)
        window.resize(window.size() + reach);
    for (; m_position < end; m_position += 1)
        interpolate(result);
    beginAnew();
    return result;
}

void DriftResampler::take(const Sound& piece)
{
    for (std::size_t channel = 0; channel < m_windows.size(); ++channel)
        for (std::size_t i = channel; i < piece.samples.size(); i += m_windows.size())
            m_windows[channel].push_back(piece.samples[i]);
}

void DriftResampler::interpolate(Sound& to) const
{
    const auto before = static_cast<std::size_t>(m_position);
    const Kernel kernel = kernelAt(m_position, before);
    for (const auto& window : m_windows)
        to.samples.push_back(weighted(kernel, window.data() + before + 1 - reach));
}

void DriftResampler::passUnchanged(Sound& to)
{
    for (auto i = static_cast<std::size_t>(m_position); i < frames(); ++i)
        for (const auto& window : m_windows)
            to.samples.push_back(window[i]);
    m_position = static_cast<double>(frames());
}

void DriftResampler::forgetWhatIsBehind()
{
    const auto behind = static_cast<std::ptrdiff_t>(m_position) - reach;
    for (auto& window : m_windows)
        window.erase(window.begin(), window.begin() + behind);
    m_position -= static_cast<double>(behind);
}

void DriftResampler::beginAnew()
{
    for (auto& window : m_windows)
        window.assign(reach, 0);
    m_position = reach;
}

} // namespace vantry
