#include "transcribe/PhraseFinder.h"

#include "base/HostTime.h"
#include "support/Voice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

namespace vantry {

using test::joined;
using test::quiet;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::vector<Phrase> phrasesIn(const std::vector<float>& samples)
{
    PhraseFinder finder;
    // In pieces as a decoder gives them.
    for (std::size_t from = 0; from < samples.size(); from += 1024)
        finder.hear(std::span(samples).subspan(from, std::min<std::size_t>(1024, samples.size() - from)));
    return finder.phrases();
}

std::vector<float> hum(double length)
{
    auto samples = quiet(length);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(std::sin(2 * std::numbers::pi * 60 * static_cast<double>(i) / sampleRate)) / 2;
    return samples;
}

std::vector<float> withNoise(std::vector<float> samples, float loudness)
{
    std::mt19937 random(1);
    std::normal_distribution<float> noise(0, loudness);
    for (float& sample : samples)
        sample += noise(random);
    return samples;
}

/// Keys that are hit, a few a second.
std::vector<float> typing(double length)
{
    auto samples = quiet(length);
    for (std::size_t at = 5000; at + 500 < samples.size(); at += 9000)
        for (std::size_t i = 0; i < 500; ++i)
            samples[at + i] = (i % 7 < 3 ? 0.3F : -0.3F) * std::exp(-static_cast<float>(i) / 100);
    return samples;
}

void expectPhraseAt(const Phrase& phrase, double start, double end)
{
    EXPECT_NEAR(seconds(phrase.start), start, 0.15);
    EXPECT_NEAR(seconds(phrase.end), end, 0.25);
}

const std::vector<float>& sentence()
{
    // From its first sound to its last.
    static const auto samples = [] {
        auto said = test::spoken("Today we build a screen recorder", "rms");
        const auto isLoud = [](float sample) { return std::abs(sample) > 0.01F; };
        said.erase(std::ranges::find_if(said.rbegin(), said.rend(), isLoud).base(), said.end());
        said.erase(said.begin(), std::ranges::find_if(said, isLoud));
        return said;
    }();
    return samples;
}

double lengthOf(const std::vector<float>& samples)
{
    return static_cast<double>(samples.size()) / sampleRate;
}

} // namespace

TEST(PhraseFinder, whatIsNotSpeechIsNoPhrase)
{
    EXPECT_THAT(phrasesIn(quiet(20)), IsEmpty());
    EXPECT_THAT(phrasesIn(hum(20)), IsEmpty());
    EXPECT_THAT(phrasesIn(withNoise(quiet(20), 0.1F)), IsEmpty()) << "a fan";
    EXPECT_THAT(phrasesIn(typing(20)), IsEmpty());
}

TEST(PhraseFinder, aPhraseIsFoundWhereItIsSpoken)
{
    const auto sound = joined({ quiet(3), sentence(), quiet(1), sentence(), quiet(4) });
    const double second = 3 + lengthOf(sentence()) + 1;
    for (const float noise : { 0.0F, 0.003F }) {
        const auto phrases = phrasesIn(withNoise(sound, noise));
        ASSERT_THAT(phrases, SizeIs(2)) << noise;
        expectPhraseAt(phrases[0], 3, 3 + lengthOf(sentence()));
        expectPhraseAt(phrases[1], second, second + lengthOf(sentence()));
    }
}

TEST(PhraseFinder, whoeverSpeaksWithoutAPauseIsCutWhereItIsQuietest)
{
    std::vector<float> sound = sentence();
    while (lengthOf(sound) < 30)
        sound = joined({ sound, quiet(0.2), sentence() });
    const auto phrases = phrasesIn(sound);
    ASSERT_GE(phrases.size(), 3u);
    EXPECT_NEAR(seconds(phrases.front().start), 0, 0.15);
    EXPECT_NEAR(seconds(phrases.back().end), lengthOf(sound), 0.25);
    for (std::size_t i = 0; i < phrases.size(); ++i) {
        EXPECT_LE(phrases[i].end - phrases[i].start, PhraseFinder::longest);
        EXPECT_GE(seconds(phrases[i].end - phrases[i].start), 1.9);
        if (i > 0) {
            EXPECT_EQ(phrases[i].start, phrases[i - 1].end);
            const auto cut = static_cast<std::size_t>(phrases[i].start.count());
            EXPECT_LT(*std::max_element(sound.begin() + cut - 1000, sound.begin() + cut + 1000), 0.05F)
                << seconds(phrases[i].start);
        }
    }
}

} // namespace vantry
