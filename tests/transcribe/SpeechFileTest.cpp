#include "transcribe/SpeechFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace vantry {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

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

TEST(SpeechFile, isGoneHoweverTheProcessEnds)
{
    const SpeechFile speech;
    const auto open = "/proc/self/fd/" + std::to_string(speech.descriptor());
    EXPECT_THAT(std::filesystem::read_symlink(open).string(), EndsWith("(deleted)"));
}

} // namespace vantry
