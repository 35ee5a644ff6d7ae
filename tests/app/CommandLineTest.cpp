#include "app/CommandLine.h"
#include "base/AppError.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry {

using testing::HasSubstr;

namespace {

std::string refusal(const std::vector<std::string>& arguments)
{
    try {
        parseCommandLine(arguments);
    } catch (const AppError& error) {
        return error.what();
    }
    return "accepted";
}

} // namespace

TEST(CommandLine, readsOptionsAndTheirValues)
{
    const CommandLine line = parseCommandLine({ "--autorecord", "5", "--export=a=b.mp4", "--height", "720" });
    EXPECT_EQ(line.autorecord, "5");
    EXPECT_EQ(line.exportFile, "a=b.mp4");
    EXPECT_EQ(line.height, 720);
    EXPECT_EQ(parseCommandLine({ "--open", "--selftest" }).open, "--selftest") << "a value may look like an option";
    EXPECT_FALSE(parseCommandLine({ "--autorecord" }).autorecord) << "an option of automation needs none";
}

TEST(CommandLine, refusesInClearWordsWhatMeansNothing)
{
    EXPECT_EQ(refusal({ "--exprot" }), "Unknown option --exprot. Did you mean --export?");
    EXPECT_EQ(refusal({ "-h" }), "Unknown option -h. Did you mean --help?");
    EXPECT_EQ(refusal({ "--" }), "Unknown option --. See --help");
    EXPECT_THAT(refusal({ "folder" }), HasSubstr("--open \"folder\""));
    EXPECT_EQ(refusal({ "--version=2" }), "--version takes no value");
    EXPECT_EQ(refusal({ "--open", "a", "--export" }), "--export needs FILE");
    EXPECT_THAT(refusal({ "--export", "out.mp4" }), HasSubstr("--open DIR or --autorecord N"));
    EXPECT_THAT(refusal({ "--height", "720" }), HasSubstr("--export"));
    for (const char* height : { "0", "-720", "1081", "720p", "", "99999999999999" })
        EXPECT_THAT(refusal({ "--open", "a", "--export", "b", "--height", height }), HasSubstr("720, 1080, 1440 or 2160"))
            << height;
}

TEST(CommandLine, anAutomaticRecordingCountsTheCountdownIn)
{
    EXPECT_EQ(autorecordWait("10"), 13.5);
    for (const char* noNumber : { "", "ten", "10s", "nan", "inf" })
        EXPECT_EQ(autorecordWait(noNumber), 7.5) << noNumber;
    EXPECT_LT(autorecordWait("1e300"), 1e7);
}

} // namespace vantry
