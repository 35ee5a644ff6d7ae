#include "ai/OverlayReply.h"

#include "ai/Characters.h"
#include "ai/Chat.h"

#include <gmock/gmock.h>

namespace vantry::AI {

using testing::HasSubstr;

namespace {

OverlayReply decoded(const std::string& json)
{
    return decodeAnswer(json, OverlayReply::decode);
}

/// Lines of speech from second to second, in one long clip.
Project saying(std::vector<Line> lines)
{
    return { .clips = { { .duration = 600, .keep = 600, .transcript = std::move(lines) } } };
}

} // namespace

TEST(OverlayReplyTest, thePromptIsTheKnownOne)
{
    EXPECT_EQ(overlaySystemPrompt().size(), 1084);
    EXPECT_EQ(characterCount(overlaySystemPrompt()), 1081);
}

TEST(OverlayReplyTest, theMessageTellsWhatIsSaidInTheMinuteBefore)
{
    const auto project =
        saying({ { 30, 40, "too early" }, { 30, 40.5, "just" }, { 95, 120, "now" }, { 100, 101, "also" }, { 100.5, 101, "late" } });
    EXPECT_EQ(overlayUserMessage(" Say hello\n", 100, project),
        "Instruction:  Say hello\n\nThe overlay appears at 1:40 in the video.\nWhat was said in the minute before:\n"
        "[0:30] just\n[1:35] now\n[1:40] also");
    EXPECT_EQ(overlayUserMessage("", 3725, {}),
        "Instruction: \nThe overlay appears at 1:02:05 in the video.\nWhat was said in the minute before:\n(no transcript yet)");
}

TEST(OverlayReplyTest, whatIsLeftOpenIsAsUsual)
{
    for (const auto* json :
        { R"({"kind":"lowerThird"})", R"({"kind":"lowerThird","text":null,"html":null,"x":null,"more":[1]})" }) {
        auto usual = Overlay::make(OverlayKind::lowerThird, "Tom & me", 7);
        const auto overlay = makeOverlay(decoded(json), "Tom & me", 7);
        EXPECT_NE(overlay.id, usual.id);
        usual.id = overlay.id;
        EXPECT_EQ(overlay, usual);
    }
    EXPECT_EQ(makeOverlay(decoded(R"({"html":""})"), "a", 0).html, "") << "empty is not missing";
    EXPECT_THAT(makeOverlay(decoded(R"({"text":"b"})"), "a", 0).html, HasSubstr(">b<"));
}

TEST(OverlayReplyTest, onlyTheExactNamesAreKinds)
{
    EXPECT_EQ(makeOverlay(decoded(R"({"kind":"text"})"), "", 0).kind, OverlayKind::text);
    for (const auto* json : { "{}", R"({"kind":"LowerThird"})", R"({"kind":"card"})" })
        EXPECT_EQ(makeOverlay(decoded(json), "", 0).kind, OverlayKind::bubble);
}

TEST(OverlayReplyTest, numbersAreHeldWithinLimits)
{
    const auto low = makeOverlay(decoded(R"({"duration":0.5,"x":-1,"y":0,"width":0.05})"), "", 0);
    EXPECT_EQ(low.duration, 1);
    EXPECT_EQ(low.x, 0.05);
    EXPECT_EQ(low.y, 0.05);
    EXPECT_EQ(low.width, 0.15);
    const auto high = makeOverlay(decoded(R"({"duration":45,"x":1.2,"y":1e300,"width":1})"), "", 0);
    EXPECT_EQ(high.duration, 30);
    EXPECT_EQ(high.x, 0.95);
    EXPECT_EQ(high.y, 0.95);
    EXPECT_EQ(high.width, 0.95);
    const auto within = makeOverlay(decoded(R"({"duration":2.5,"x":0.3,"y":0.2,"width":0.5,"html":"<b>hi</b>"})"), "", 9);
    EXPECT_EQ(within.duration, 2.5);
    EXPECT_EQ(within.x, 0.3);
    EXPECT_EQ(within.y, 0.2);
    EXPECT_EQ(within.width, 0.5);
    EXPECT_EQ(within.html, "<b>hi</b>");
    EXPECT_EQ(within.start, 9);
}

TEST(OverlayReplyTest, anotherTypeFailsTheWhole)
{
    for (const auto* json : { R"({"x":"0.5"})", R"({"kind":1})", R"({"html":[]})", R"({"duration":true})", "[]", R"({"x":1e999})" })
        EXPECT_THROW(decoded(json), AppError) << json;
}

} // namespace vantry::AI
