#include "ai/YouTubeReply.h"

#include "ai/Characters.h"
#include "ai/Chat.h"

#include <gmock/gmock.h>

namespace vantry::AI {

using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

namespace {

Project project(double length = 60)
{
    return { .name = "My talk", .clips = { { .duration = length, .keep = length } }, .youtube = { .title = "Kept" } };
}

YouTubeInfo info(const std::string& json, const Project& of = project())
{
    return makeYouTubeInfo(decodeAnswer(json, YouTubeReply::decode), of);
}

/// The chapters' lines in the description.
std::string chapters(const std::string& json, double length = 60)
{
    return info(R"({"chapters":)" + json + "}", project(length)).description;
}

} // namespace

TEST(YouTubeReplyTest, thePromptIsTheKnownOne)
{
    EXPECT_EQ(youTubeSystemPrompt().size(), 758);
    EXPECT_EQ(characterCount(youTubeSystemPrompt()), 754);
}

TEST(YouTubeReplyTest, theMessageHoldsSpeechAndOverlays)
{
    auto talk = project(3725);
    EXPECT_EQ(youTubeUserMessage(talk), std::nullopt);
    talk.clips[0].transcript = std::vector<Line>{};
    EXPECT_EQ(youTubeUserMessage(talk), std::nullopt);
    talk.overlays = { Overlay::make(OverlayKind::text, "Two", 70), Overlay::make(OverlayKind::bubble, "One", 5) };
    EXPECT_EQ(youTubeUserMessage(talk),
        "Working title: My talk\nLength: 1:02:05\nTranscript:\n\nOn-screen text:\n[1:10] on-screen: Two\n[0:05] on-screen: One");
    talk.clips[0].transcript = { { 1, 2, "Hello" }, { 65, 66, "there" } };
    EXPECT_EQ(youTubeUserMessage(talk),
        "Working title: My talk\nLength: 1:02:05\nTranscript:\n[0:01] Hello\n[1:05] there\n"
        "On-screen text:\n[1:10] on-screen: Two\n[0:05] on-screen: One");
    talk.overlays.clear();
    EXPECT_THAT(*youTubeUserMessage(talk), EndsWith("\nTranscript:\n[0:01] Hello\n[1:05] there\n"));
}

TEST(YouTubeReplyTest, theDetailsReplaceTheOldOnes)
{
    const auto all =
        info(R"({"titles":["A","B"],"description":" \n\u00a0Hello\nthere\u2029 ","tags":["x"," y "],"chapters":null})");
    EXPECT_EQ(all.title, "A");
    EXPECT_THAT(all.titles, ElementsAre("A", "B"));
    EXPECT_EQ(all.description, "Hello\nthere");
    EXPECT_EQ(all.tags, "x,  y ");

    auto before = project();
    before.youtube = { .title = "Kept", .titles = { "Kept" }, .description = "old", .tags = "old" };
    const auto nothing = info("{}", before);
    EXPECT_EQ(nothing.title, "Kept");
    EXPECT_THAT(nothing.titles, IsEmpty());
    EXPECT_EQ(nothing.description, "");
    EXPECT_EQ(nothing.tags, "");
}

TEST(YouTubeReplyTest, chaptersAreInOrderApartAndWithinTheVideo)
{
    EXPECT_EQ(
        chapters(R"([{"time":5,"title":"b"},{"time":0,"title":"a"},{"time":12,"title":"c"}])"), "\n\nChapters\n0:00 a\n0:12 c");
    EXPECT_EQ(chapters(R"([{"time":30,"title":"a"}])"), "\n\nChapters\n0:00 a") << "the first is at the start";
    EXPECT_EQ(chapters(R"([{"time":30,"title":"a"},{"time":35,"title":"b"}])"), "\n\nChapters\n0:00 a\n0:35 b");
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
    std::string list;
    for (int i = 0; i < 20; ++i)
        list += (i ? ",\"" : "\"") + std::string(30, static_cast<char>('a' + i)) + '"';
    const auto tags = info(R"({"tags":[)" + list + "]}").tags;
    EXPECT_EQ(tags.size(), 478);
    EXPECT_THAT(tags, EndsWith(", " + std::string(30, 'o')));

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

TEST(YouTubeReplyTest, anotherTypeFailsTheWhole)
{
    for (const auto* json : { R"({"titles":"a"})", R"({"titles":[1]})", R"({"tags":[null]})", R"({"description":[]})",
             R"({"chapters":[{"time":1}]})", R"({"chapters":[{"title":"a"}]})", R"({"chapters":[{"time":"1","title":"a"}]})" })
        EXPECT_THROW(info(json), AppError) << json;
}

} // namespace vantry::AI
