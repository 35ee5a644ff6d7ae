#include "support/FlashAndClick.h"

#include "support/MovieProbe.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace vantry::test {

namespace {

constexpr double rate = 48000;

/// When the picture begins to be white, in seconds.
std::vector<double> flashes(const std::filesystem::path& movie, const std::string& stream)
{
    constexpr int white = 180;
    std::vector<double> times;
    int before = 255;
    for (const auto& frame : probeFrames(movie, stream)) {
        if (frame.luma > white && before <= white)
            times.push_back(frame.time);
        before = frame.luma;
    }
    return times;
}

/// The click that is less than half a second from `time`, in seconds.
std::optional<double> clickNear(double time, const std::vector<float>& samples, int channels)
{
    constexpr float quiet = 0.2f;
    const auto first = std::lround((time - 0.5) * rate) * channels;
    const auto last = first + static_cast<long>(rate) * channels;
    if (first < 0 || last > std::ssize(samples))
        return std::nullopt;
    const auto loudest = std::max_element(
        samples.begin() + first, samples.begin() + last, [](float one, float other) { return std::abs(one) < std::abs(other); });
    if (std::abs(*loudest) < quiet)
        return std::nullopt;
    return static_cast<double>((loudest - samples.begin()) / channels) / rate;
}

} // namespace

std::vector<double> clicksAfterFlashes(const std::filesystem::path& movie, const std::string& pictures, int channels)
{
    const auto samples = probeSound(movie, "a:0");
    std::vector<double> found;
    for (const double flash : flashes(movie, pictures))
        if (const auto click = clickNear(flash, samples, channels))
            found.push_back(*click - flash);
    return found;
}

} // namespace vantry::test
