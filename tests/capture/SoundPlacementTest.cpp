#include "capture/SoundPlacement.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace vantry {

namespace {

constexpr int quantum = 1024;

HostDuration at(double sample)
{
    return HostDuration(std::llround(sample * 1e9 / sampleRate));
}

/// A ramp says of every sample where it came from.
Sound ramp(int first, int length = quantum)
{
    Sound sound{ .channels = 1, .samples = {} };
    for (int i = first; i < first + length; ++i)
        sound.samples.push_back(static_cast<float>(i));
    return sound;
}

struct Track {
    SoundPlacement placement{ 1 };
    std::vector<float> samples;

    SoundPlacement::Sink sink()
    {
        return [this](const Sound& sound) { samples.insert(samples.end(), sound.samples.begin(), sound.samples.end()); };
    }
    void place(const Sound& sound, double sample) { placement.place(sound, at(sample), sink()); }
    void finish(int end) { placement.finish(SampleCount(end), sink()); }
};

} // namespace

TEST(SoundPlacement, aLateBeginAGapAndTheRestUpToTheEndAreSilence)
{
    Track track;
    track.place(ramp(1), 500);
    track.place(ramp(2000), 500 + quantum + 600);
    track.finish(4000);
    ASSERT_EQ(track.samples.size(), 4000u);
    EXPECT_EQ(track.samples[499], 0);
    EXPECT_EQ(track.samples[500], 1);
    EXPECT_EQ(track.samples[500 + quantum - 1], quantum);
    EXPECT_EQ(track.samples[500 + quantum], 0);
    EXPECT_EQ(track.samples[500 + quantum + 599], 0);
    EXPECT_EQ(track.samples[500 + quantum + 600], 2000);
    EXPECT_EQ(track.samples[3999], 0);
}

TEST(SoundPlacement, whatLiesBeforeTheStartOrOverEarlierSoundIsCutToTheSample)
{
    Track track;
    track.place(ramp(0), -2000);
    EXPECT_TRUE(track.samples.empty());
    track.place(ramp(1), -17);
    ASSERT_EQ(track.samples.size(), quantum - 17u);
    EXPECT_EQ(track.samples[0], 18);
    track.place(ramp(5000), 300);
    ASSERT_EQ(track.samples.size(), 300u + quantum);
    EXPECT_EQ(track.samples[quantum - 18], quantum);
    EXPECT_EQ(track.samples[quantum - 17], 5000 + quantum - 17 - 300);
    track.place(ramp(9000, 100), 0);
    EXPECT_EQ(track.samples.size(), 300u + quantum);
}

TEST(SoundPlacement, tremblingStampsLeaveNoSeam)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<> trembling(-90, 90);
    Track track;
    track.place(ramp(0), 0);
    for (int i = 1; i < 1000; ++i)
        track.place(ramp(i * quantum), i * quantum + trembling(random));
    for (std::size_t i = 0; i < track.samples.size(); ++i)
        ASSERT_NEAR(track.samples[i], static_cast<float>(i), 0.5) << i;
}

TEST(SoundPlacement, aDriftingClockIsFollowedSmoothly)
{
    for (const double drift : { 200e-6, -200e-6 })
        for (const int length : { 256, quantum }) {
            Track track;
            const int pieces = 60 * sampleRate / length;
            double worst = 0;
            float steepest = 0;
            double phase = 0;
            float last = 0;
            for (int i = 0; i < pieces; ++i) {
                Sound tone{ .channels = 1, .samples = {} };
                for (int k = 0; k < length; ++k, phase += 440 * 2 * std::numbers::pi / sampleRate)
                    tone.samples.push_back(static_cast<float>(std::sin(phase)));
                const double stamp = i * length * (1 + drift);
                const auto before = track.samples.size();
                track.place(tone, stamp);
                worst = std::max(worst, std::abs(stamp - static_cast<double>(before)));
                for (auto k = before; k < track.samples.size(); ++k) {
                    steepest = std::max(steepest, std::abs(track.samples[k] - last));
                    last = track.samples[k];
                }
            }
            EXPECT_LT(worst, 48) << drift << ' ' << length; // a millisecond
            EXPECT_LT(steepest, 0.065f) << drift << ' ' << length; // the tone's own steepest step is 0.0576
        }
}

} // namespace vantry
