#include "media/Resampling.h"

#include "media/Sound.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace vantry {

namespace {

std::vector<float> tone(double pitch, int rate)
{
    std::vector<float> samples(static_cast<std::size_t>(rate));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(std::sin(2 * std::numbers::pi * pitch * static_cast<double>(i) / rate));
    return samples;
}

} // namespace

TEST(Resampling, soundKeepsItsTimeAndItsLengthAndWhatTheRateCannotHoldIsLeftOut)
{
    constexpr int rate = 16000;
    const auto heard = tone(440, rate);
    const auto resultOfHeard = resampled(tone(440, sampleRate), rate), resultOfHigh = resampled(tone(12000, sampleRate), rate);
    ASSERT_EQ(resultOfHeard.size(), heard.size());
    for (std::size_t i = 100; i + 100 < heard.size(); ++i) {
        ASSERT_NEAR(resultOfHeard[i], heard[i], 0.01) << i;
        ASSERT_NEAR(resultOfHigh[i], 0, 0.01) << i;
    }
    EXPECT_TRUE(resampled({}, rate).empty());
}

} // namespace vantry
