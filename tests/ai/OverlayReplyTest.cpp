#include "ai/OverlayReply.h"

#include "ai/Characters.h"
#include "ai/Chat.h"

#include <gmock/gmock.h>

namespace vantry::AI {

using testing::HasSubstr;

namespace {

Overlay overlayOf(const std::string& json, const std::string& instruction = {})
{
    return makeOverlay(decodeAnswer(json, OverlayReply::decode), instruction, 7);
}

} // namespace

TEST(OverlayReplyTest, thePromptIsTheKnownOne)
{
    EXPECT_EQ(overlaySystemPrompt().size(), 1084);
    EXPECT_EQ(characterCount(overlaySystemPrompt()), 1081);
}

TEST(OverlayReplyTest, theMessageTellsWhatIsSaidInTheMinuteBefore)
{
    const std::vector<Line> lines{ { 30, 40, "too early" }, { 30, 40.5, "just" }, { 95, 120, "now" }, { 100, 101, "also" },
        { 100.5, 101, "late" } };
    EXPECT_EQ(overlayUserMessage(" Say hello\n", 100, { .clips = { { .duration = 600, .keep = 600, .transcript = lines } } }),
        "Instruction:  Say hello\n\nThe overlay appears at 1:40 in the video.\nWhat was said in the minute before:\n"
        "[0:30] just\n[1:35] now\n[1:40] also");
}

TEST(OverlayReplyTest, whatIsLeftOpenIsAsUsual)
{
    auto usual = Overlay::make(OverlayKind::lowerThird, "Tom & me", 7);
    const auto overlay = overlayOf(R"({"kind":"lowerThird","text":null,"html":null,"x":null,"more":[1]})", "Tom & me");
    usual.id = overlay.id;
    EXPECT_EQ(overlay, usual);
    EXPECT_EQ(overlayOf(R"({"html":""})", "a").html, "") << "empty is not missing";
    EXPECT_THAT(overlayOf(R"({"text":"b"})", "a").html, HasSubstr(">b<"));
    for (const auto* json : { "{}", R"({"kind":"LowerThird"})" })
        EXPECT_EQ(overlayOf(json).kind, OverlayKind::bubble);
}

TEST(OverlayReplyTest, numbersAreHeldWithinLimits)
{
    struct Case {
        std::string json;
        double duration, x, y, width;
    };
    for (const auto& expected : std::vector<Case>{
             { R"({"duration":0.5,"x":-1,"y":0,"width":0.05})", 1, 0.05, 0.05, 0.15 },
             { R"({"duration":45,"x":1.2,"y":1e300,"width":1})", 30, 0.95, 0.95, 0.95 },
             { R"({"duration":2.5,"x":0.3,"y":0.2,"width":0.5})", 2.5, 0.3, 0.2, 0.5 },
         }) {
        const auto overlay = overlayOf(expected.json);
        EXPECT_EQ(overlay.duration, expected.duration);
        EXPECT_EQ(overlay.x, expected.x);
        EXPECT_EQ(overlay.y, expected.y);
        EXPECT_EQ(overlay.width, expected.width);
    }
}

} // namespace vantry::AI
