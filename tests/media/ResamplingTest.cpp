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

TEST(Resampling, soundKeepsItsTimeAndItsLength)
{
    constexpr int rate = 16000;
    const auto result = resampled(tone(440, sampleRate), rate);
    const auto wanted = tone(440, rate);
    ASSERT_EQ(result.size(), wanted.size());
    for (std::size_t i = 100; i + 100 < result.size(); ++i)
        ASSERT_NEAR(result[i], wanted[i], 0.01) << i;
}

TEST(Resampling, whatTheRateCannotHoldIsLeftOut)
{
    const auto result = resampled(tone(12000, sampleRate), 16000);
    for (std::size_t i = 100; i + 100 < result.size(); ++i)
        ASSERT_NEAR(result[i], 0, 0.01) << i;
    EXPECT_TRUE(resampled({}, 16000).empty());
}

} // namespace vantry
