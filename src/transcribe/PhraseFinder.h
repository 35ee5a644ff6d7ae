#pragma once

#include "media/Sound.h"

#include <array>
#include <cstddef>
#include <span>
#include <stop_token>
#include <vector>

namespace vantry {

class SpeechFile;

/// A stretch in which somebody speaks, with a pause on both sides unless it would have become too long.
struct Phrase {
    SampleCount start{};
    SampleCount end{};

    bool operator==(const Phrase&) const = default;
};

/// Finds phrases in a microphone's sound by how its loudness moves. What goes on evenly is no speech, however loud: a fan, a hum, a
/// tone. Neither is what is over at once, as a key or a click.
class PhraseFinder {
public:
    /// No phrase is longer.
    static constexpr SampleCount longest{ 10LL * sampleRate };

    PhraseFinder();

    /// The next samples.
    void hear(std::span<const float> samples);

    /// The phrases in all that was heard, in order.
    std::vector<Phrase> phrases() const;

private:
    /// A second-order filter.
    struct Filter {
        std::array<double, 3> forward{};
        std::array<double, 2> back{};
        std::array<double, 2> state{};

        double next(double sample);
    };

    static Filter makeFilter(double frequency, bool keepsHigh);

    // Lets pass where voices are strong.
    Filter m_low;
    Filter m_high;

    double m_energy = 0; ///< Of the frame that is not complete yet.
    int m_heard = 0; ///< Samples of it.
    std::vector<float> m_levels; ///< The loudness of each frame, in decibels.
};

/// The phrases of a whole file; fewer when `cancel` is asked to stop. Throws AppError.
std::vector<Phrase> findPhrases(const SpeechFile& speech, const std::stop_token& cancel = {});

} // namespace vantry
