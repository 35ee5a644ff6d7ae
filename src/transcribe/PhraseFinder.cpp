#include "transcribe/PhraseFinder.h"

#include "transcribe/SpeechFile.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vantry {

namespace {

using Levels = std::span<const float>;

/// Loudness is measured over this many samples: a hundredth of a second.
constexpr int frame = sampleRate / 100;

constexpr std::size_t frames(double seconds)
{
    return static_cast<std::size_t>(seconds * sampleRate / frame);
}

// The band of voices.
constexpr double lowestFrequency = 150;
constexpr double highestFrequency = 4000;

/// What is quieter than -70 dB of full scale is silence.
constexpr double silence = 1e-7;

/// The loudness around a moment is compared within this distance.
constexpr std::size_t surroundings = frames(3);

/// How often that is done.
constexpr std::size_t step = frames(0.5);

/// A voice is this much louder than what it stands out from, in decibels.
constexpr float leastContrast = 6;
constexpr float mostContrast = 15;

/// A pause that is shorter belongs to the phrase.
constexpr std::size_t shortestPause = frames(0.35);

/// Vowels last as long.
constexpr std::size_t shortestVowel = frames(0.06);

/// No piece of a phrase that is cut is shorter.
constexpr std::size_t shortestPiece = frames(2);
constexpr std::size_t longestPhrase = static_cast<std::size_t>(PhraseFinder::longest.count() / frame);

/// Frames from `first` until before `last`.
struct Run {
    std::size_t first;
    std::size_t last;

    std::size_t length() const { return last - first; }
};

float percentile(std::vector<float>& levels, double fraction)
{
    const auto at = levels.begin() + static_cast<std::ptrdiff_t>(static_cast<double>(levels.size() - 1) * fraction);
    std::ranges::nth_element(levels, at);
    return *at;
}

/// What a frame must be louder than to hold a voice.
float thresholdAround(Levels levels, std::size_t middle)
{
    const auto from = middle - std::min(middle, surroundings);
    const auto to = std::min(middle + surroundings, levels.size());
    std::vector<float> around(levels.begin() + static_cast<std::ptrdiff_t>(from), levels.begin() + static_cast<std::ptrdiff_t>(to));
    const float quiet = percentile(around, 0.15);
    const float loud = percentile(around, 0.95);
    return quiet + std::clamp(0.3F * (loud - quiet), leastContrast, mostContrast);
}

/// The runs of frames that stand out.
std::vector<Run> loudRuns(Levels levels)
{
    std::vector<Run> runs;
    for (std::size_t begin = 0; begin < levels.size(); begin += step) {
        const auto end = std::min(begin + step, levels.size());
        const float threshold = thresholdAround(levels, (begin + end) / 2);
        for (auto i = begin; i < end; ++i) {
            if (levels[i] <= threshold)
                continue;
            if (!runs.empty() && runs.back().last == i)
                ++runs.back().last;
            else
                runs.push_back({ i, i + 1 });
        }
    }
    return runs;
}

/// Runs with no pause between them as one, if there is a vowel in it.
std::vector<Run> joined(const std::vector<Run>& runs)
{
    std::vector<Run> phrases;
    for (auto next = runs.begin(); next != runs.end();) {
        Run phrase = *next;
        std::size_t longestRun = 0;
        for (; next != runs.end() && next->first < phrase.last + shortestPause; ++next) {
            phrase.last = next->last;
            longestRun = std::max(longestRun, next->length());
        }
        if (longestRun >= shortestVowel)
            phrases.push_back(phrase);
    }
    return phrases;
}

/// The quietest place that leaves a piece on either side.
std::size_t quietestPlace(Levels levels, const Run& phrase)
{
    constexpr std::size_t width = frames(0.05);
    std::size_t best = phrase.first + phrase.length() / 2;
    float lowest = INFINITY;
    for (auto i = phrase.first + shortestPiece; i + width <= phrase.last - shortestPiece; ++i) {
        float sum = 0;
        for (std::size_t k = 0; k < width; ++k)
            sum += levels[i + k];
        if (sum < lowest) {
            lowest = sum;
            best = i + width / 2;
        }
    }
    return best;
}

void cutInto(std::vector<Phrase>& pieces, Levels levels, const Run& phrase)
{
    if (phrase.length() > longestPhrase) {
        const auto cut = quietestPlace(levels, phrase);
        cutInto(pieces, levels, { phrase.first, cut });
        cutInto(pieces, levels, { cut, phrase.last });
        return;
    }
    const auto position = [](std::size_t count) { return SampleCount(static_cast<std::int64_t>(count) * frame); };
    pieces.push_back({ position(phrase.first), position(phrase.last) });
}

} // namespace

double PhraseFinder::Filter::next(double sample)
{
    // The two states, in the transposed form. Without the little offset an end in pure silence would be slow arithmetic for ever.
    const double result = forward[0] * sample + state[0] + 1e-25;
    state[0] = forward[1] * sample - back[0] * result + state[1];
    state[1] = forward[2] * sample - back[1] * result;
    return result;
}

/// Butterworth's, of the second order.
PhraseFinder::Filter PhraseFinder::makeFilter(double frequency, bool keepsHigh)
{
    const double angle = 2 * std::numbers::pi * frequency / sampleRate;
    const double alpha = std::sin(angle) / std::numbers::sqrt2;
    const double cosine = std::cos(angle);
    const double scale = 1 / (1 + alpha);
    const double middle = keepsHigh ? -(1 + cosine) : 1 - cosine;
    const double outer = std::abs(middle) / 2;
    return { .forward = { outer * scale, middle * scale, outer * scale }, .back = { -2 * cosine * scale, (1 - alpha) * scale } };
}

PhraseFinder::PhraseFinder()
    : m_low(makeFilter(lowestFrequency, true))
    , m_high(makeFilter(highestFrequency, false))
{
}

void PhraseFinder::hear(std::span<const float> samples)
{
    for (const float sample : samples) {
        const double filtered = m_high.next(m_low.next(sample));
        m_energy += filtered * filtered;
        if (++m_heard < frame)
            continue;
        m_levels.push_back(static_cast<float>(10 * std::log10(m_energy / frame + silence)));
        m_energy = 0;
        m_heard = 0;
    }
}

std::vector<Phrase> PhraseFinder::phrases() const
{
    std::vector<Phrase> found;
    for (const Run& phrase : joined(loudRuns(m_levels)))
        cutInto(found, m_levels, phrase);
    return found;
}

std::vector<Phrase> findPhrases(const SpeechFile& speech, const std::stop_token& cancel)
{
    constexpr SampleCount piece(10LL * sampleRate);
    PhraseFinder finder;
    const SampleCount end = speech.length();
    for (SampleCount from{}; from < end && !cancel.stop_requested(); from += piece)
        finder.hear(speech.read(from, from + piece));
    return finder.phrases();
}

} // namespace vantry
