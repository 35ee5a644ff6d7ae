#include "ai/YouTubeReply.h"

#include "ai/Characters.h"
#include "ai/Chat.h"

#include <gmock/gmock.h>

namespace vantry::AI {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Project project(double length)
{
    return {
        .name = "My talk", .clips = { { .duration = length, .keep = length } }, .youtube = { "Kept", { "old" }, "old", "old" }
    };
}

YouTubeInfo info(const std::string& json, double length = 60)
{
    return makeYouTubeInfo(decodeAnswer(json, YouTubeReply::decode), project(length));
}

/// The chapters' lines in the description.
std::string chapters(const std::string& json, double length = 60)
{
    return info(R"({"chapters":)" + json + "}", length).description;
}

} // namespace

TEST(YouTubeReplyTest, thePromptIsTheKnownOne)
{
    EXPECT_EQ(youTubeSystemPrompt().size(), 758);
    EXPECT_EQ(characterCount(youTubeSystemPrompt()), 754);
}

TEST(YouTubeReplyTest, theDetailsReplaceTheOldOnes)
{
    const auto all =
        info(R"({"titles":["A","B"],"description":" \n\u00a0Hello\nthere\u2029 ","tags":["x"," y "],"chapters":null})");
    EXPECT_EQ(all.title, "A");
    EXPECT_THAT(all.titles, ElementsAre("A", "B"));
    EXPECT_EQ(all.description, "Hello\nthere");
    EXPECT_EQ(all.tags, "x,  y ");

    const auto nothing = info("{}");
    EXPECT_EQ(nothing.title, "Kept");
    EXPECT_THAT(nothing.titles, IsEmpty());
    EXPECT_EQ(nothing.description, "");
    EXPECT_EQ(nothing.tags, "");
}

TEST(YouTubeReplyTest, chaptersAreInOrderApartAndWithinTheVideo)
{
    EXPECT_EQ(chapters(R"([{"time":30,"title":"a"},{"time":35,"title":"b"}])"), "\n\nChapters\n0:00 a\n0:35 b")
        << "the first is at the start";
    EXPECT_EQ(chapters(R"([{"time":0,"title":"a"},{"time":9.99,"title":"b"},{"time":10,"title":"c"},{"time":19.9,"title":"d"}])"),
        "\n\nChapters\n0:00 a\n0:10 c");
    EXPECT_EQ(
        chapters(R"([{"time":20,"title":"x"},{"time":20,"title":"y"},{"time":0,"title":"a"}])"), "\n\nChapters\n0:00 a\n0:20 x")
        << "equal times keep their order";
    EXPECT_EQ(
        chapters(R"([{"time":59.9,"title":"b"},{"time":60,"title":"c"},{"time":0,"title":"a"}])"), "\n\nChapters\n0:00 a\n0:59 b");
    EXPECT_EQ(chapters(R"([{"time":60,"title":"a"}])"), "");
    EXPECT_EQ(chapters(R"([{"time":-7,"title":"a"},{"time":3660,"title":"b"}])", 4000), "\n\nChapters\n0:00 a\n1:01:00 b");
    EXPECT_EQ(info(R"({"description":"d ","chapters":[{"time":0,"title":"a"}]})").description, "d\n\nChapters\n0:00 a");
}

TEST(YouTubeReplyTest, tagsKeepWithinTheirBudget)
{
    const auto exactly = std::string(470, 'x');
    EXPECT_EQ(info(R"({"tags":[")" + exactly + R"(","123456789","12345678","1"]})").tags, exactly + ", 12345678");
    // A character is what a reader takes for one.
    const std::string flag = "🇳🇴";
    std::string flags;
    for (int i = 0; i < 480; ++i)
        flags += flag;
    EXPECT_EQ(info(R"({"tags":[")" + flags + R"("]})").tags, flags);
    EXPECT_EQ(info(R"({"tags":[")" + flags + flag + R"("]})").tags, "");
}

} // namespace vantry::AI
