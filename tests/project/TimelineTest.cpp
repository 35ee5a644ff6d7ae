#include "project/Timeline.h"

#include "project/SampleProject.h"
#include "project/Timecode.h"
#include "project/Transcript.h"

#include <gmock/gmock.h>

#include <limits>

namespace vantry {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Timeline, clipsLieEndToEndUpToWhatIsKept)
{
    const auto project = projectOfKeeps({ 10, 5, 7 });
    EXPECT_EQ(totalLength(project), 22);
    EXPECT_THAT(clipJoins(project), ElementsAre(10, 15));
    EXPECT_THAT(clipJoins(projectOfKeeps({})), IsEmpty());
}

TEST(Timeline, aLayoutIsInForceFromJustBeforeItsTime)
{
    const LayoutEvent first{ 2, Layout::camera, Corner::topLeft };
    const LayoutEvent second{ 10, Layout::bubble, Corner::topLeft };
    const Project project{ .layouts = { first, second } };
    EXPECT_EQ(layoutInForce(project, 9.99995), second);
    EXPECT_EQ(layoutInForce(project, 9.9998), first);
    EXPECT_EQ(layoutInForce(project, 0), first);
    EXPECT_EQ(layoutInForce(Project(), 3).layout, Layout::bubble) << "everything recorded is shown";
}

TEST(Transcript, isInProjectTimeAndEndsWithWhatIsKept)
{
    auto project = projectOfKeeps({ 10, 4, 1, 3 });
    project.clips[0].transcript.emplace();
    project.clips[1].transcript = { { 1, 3, "a" }, { 3.5, 6, "b" }, { 4, 7, "c" } };
    project.clips[3].transcript = { { 0, 1, "d" } };
    EXPECT_THAT(transcript(project), ElementsAre(Line{ 11, 13, "a" }, Line{ 13.5, 14, "b" }, Line{ 15, 16, "d" }));
    EXPECT_EQ(transcriptText(project), "[0:11] a\n[0:13] b\n[0:15] d");
}

TEST(Timecode, cutsToWholeSecondsAndIsZeroForTimesWithoutMeaning)
{
    EXPECT_EQ(timecode(59.99), "0:59");
    EXPECT_EQ(timecode(3599.5), "59:59");
    EXPECT_EQ(timecode(3725), "1:02:05");
    EXPECT_EQ(timecode(1e9), "277777:46:40");
    constexpr auto infinity = std::numeric_limits<double>::infinity();
    for (const auto time : { -0.5, std::numeric_limits<double>::quiet_NaN(), infinity, 0x1p63 })
        EXPECT_EQ(timecode(time), "0:00") << time;
}

} // namespace vantry
