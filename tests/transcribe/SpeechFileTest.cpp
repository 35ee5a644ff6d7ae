#include "transcribe/SpeechFile.h"

#include "support/MovieProbe.h"
#include "transcribe/TemporaryPlace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include <unistd.h>

namespace vantry {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

std::vector<float> ramp(std::size_t count)
{
    std::vector<float> samples(count);
    for (std::size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float>(i) / static_cast<float>(count);
    return samples;
}

} // namespace

TEST(SpeechFile, isACoreAudioFileThatHasNoName)
{
    const test::TemporaryPlace place;
    SpeechFile speech;
    speech.write(SampleCount(0), ramp(sampleRate));
    EXPECT_THAT(place.files(), IsEmpty());

    const std::string open = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(speech.descriptor());
    auto found = test::probeStream(open, "a:0");
    EXPECT_EQ(found["codec_name"], "pcm_f32le");
    EXPECT_EQ(found["sample_rate"], "48000");
    EXPECT_EQ(found["channels"], "1");
    EXPECT_EQ(test::probeSound(open, "a:0"), ramp(sampleRate));
}

TEST(SpeechFile, givesWhatWasWrittenAndSilenceBetween)
{
    SpeechFile speech;
    speech.write(SampleCount(2), std::vector<float>{ 1, 2, 3 });
    speech.write(SampleCount(6), std::vector<float>{ 4 });
    EXPECT_EQ(speech.length(), SampleCount(7));
    EXPECT_THAT(speech.read(SampleCount(1), SampleCount(100)), ElementsAre(0, 1, 2, 3, 0, 4));
    EXPECT_THAT(speech.read(SampleCount(7), SampleCount(9)), IsEmpty());
    EXPECT_THAT(speech.read(SampleCount(3), SampleCount(5)), ElementsAre(2, 3));
}

TEST(SpeechFileDeathTest, leavesNothingWhenTheProcessDies)
{
    const test::TemporaryPlace place;
    EXPECT_DEATH(
        {
            SpeechFile speech;
            speech.write(SampleCount(0), ramp(sampleRate));
            std::abort();
        },
        "");
    EXPECT_THAT(place.files(), IsEmpty());
}

} // namespace vantry
