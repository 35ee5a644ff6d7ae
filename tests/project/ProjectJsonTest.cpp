#include "project/ProjectDecoder.h"
#include "project/ProjectEncoder.h"

#include "base/AppError.h"
#include "project/ProjectLimits.h"
#include "project/SampleProject.h"

#include <gmock/gmock.h>

#include <limits>

namespace vantry {

using testing::HasSubstr;
using testing::Not;

namespace {

const auto firstId = *Uuid::parse("11111111-2222-4333-8444-5555555555AA");

constexpr std::string_view fullFile = R"({
  "blurBackground": true,
  "bubbleSize": 0.26,
  "clips": [
    {
      "duration": 10.5,
      "file": "clip-1763324703.mov",
      "id": "11111111-2222-4333-8444-5555555555AA",
      "keep": 10,
      "transcript": [
        {
          "end": 2.75,
          "start": 0.1,
          "text": "Grüße \"you\" \\ there\n"
        }
      ]
    },
    {
      "duration": 3,
      "file": "clip-2.mov",
      "id": "11111111-2222-4333-8444-5555555555AA",
      "keep": 3,
      "transcript": []
    },
    {
      "duration": 4,
      "file": "clip-3.mov",
      "id": "11111111-2222-4333-8444-5555555555AA",
      "keep": 0
    }
  ],
  "created": 86400,
  "layouts": [
    {
      "corner": "topLeft",
      "layout": "bubble",
      "time": 0
    },
    {
      "corner": "bottomLeft",
      "layout": "screen",
      "time": 5.5
    }
  ],
  "name": "Recording",
  "overlays": [
    {
      "duration": 4,
      "html": "<div style='color:red'>Hi</div>",
      "id": "11111111-2222-4333-8444-5555555555AA",
      "kind": "lowerThird",
      "start": 1.5,
      "text": "Hi",
      "width": 0.4,
      "x": 0.5,
      "y": 0.8
    }
  ],
  "screenCrop": [
    [
      0,
      0.05
    ],
    [
      1,
      0.95
    ]
  ],
  "systemVolume": 0.5,
  "youtube": {
    "description": "About",
    "tags": "a, b",
    "title": "Title",
    "titles": [
      "One",
      "Two"
    ]
  }
}
)";

std::string replaced(std::string_view from, std::string_view to)
{
    std::string file(fullFile);
    const auto place = file.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return file.replace(place, from.size(), to);
}

/// The error's text, or "" when the bytes are a project.
std::string errorOf(std::string_view bytes)
{
    try {
        decodeProject(bytes);
        return {};
    } catch (const AppError& error) {
        return error.what();
    }
}

std::string errorAfter(std::string_view from, std::string_view to)
{
    return errorOf(replaced(from, to));
}

Project numbered(double number)
{
    return { .bubbleSize = number };
}

} // namespace

TEST(ProjectJson, readsEveryFieldAndWritesTheSameBytes)
{
    const auto project = decodeProject(fullFile);
    EXPECT_EQ(project.name, "Recording");
    EXPECT_EQ(project.created.secondsSince2001, 86400);
    ASSERT_EQ(project.clips.size(), 3u);
    EXPECT_EQ(project.clips[0].id, firstId);
    EXPECT_EQ(project.clips[0].file, "clip-1763324703.mov");
    EXPECT_EQ(project.clips[0].duration, 10.5);
    EXPECT_EQ(project.clips[0].keep, 10);
    EXPECT_EQ(project.clips[0].transcript, std::vector({ Line{ 0.1, 2.75, "Grüße \"you\" \\ there\n" } }));
    EXPECT_EQ(project.clips[1].transcript, std::vector<Line>());
    EXPECT_EQ(project.clips[2].transcript, std::nullopt);
    EXPECT_EQ(project.layouts,
        std::vector({ LayoutEvent{ 0, Layout::bubble, Corner::topLeft }, LayoutEvent{ 5.5, Layout::screen, Corner::bottomLeft } }));
    EXPECT_EQ(project.overlays,
        std::vector(
            { Overlay{ firstId, 1.5, 4, OverlayKind::lowerThird, "Hi", "<div style='color:red'>Hi</div>", 0.5, 0.8, 0.4 } }));
    EXPECT_EQ(project.bubbleSize, 0.26);
    EXPECT_EQ(project.systemVolume, 0.5);
    EXPECT_EQ(project.blurBackground, true);
    EXPECT_EQ(project.screenCrop, (CropRect{ 0, 0.05, 1, 0.95 }));
    EXPECT_EQ(project.youtube.title, "Title");
    EXPECT_EQ(project.youtube.titles, std::vector<std::string>({ "One", "Two" }));
    EXPECT_EQ(project.youtube.description, "About");
    EXPECT_EQ(project.youtube.tags, "a, b");

    EXPECT_EQ(encodeProject(project), fullFile);
}

TEST(ProjectJson, leavesOutWhatIsAbsent)
{
    const auto bytes = encodeProject({ .created = {}, .layouts = { LayoutEvent() } });
    for (const auto* key : { "systemVolume", "blurBackground", "screenCrop", "transcript", "null" })
        EXPECT_THAT(bytes, Not(HasSubstr(key)));
    EXPECT_THAT(bytes, HasSubstr("\"clips\": [],\n  \"created\": 0,\n"));
    EXPECT_THAT(bytes, HasSubstr("\"overlays\": [],\n"));
    EXPECT_EQ(encodeProject(decodeProject(bytes)), bytes);
}

TEST(ProjectJson, takesNullForAbsentOnlyWhereAFieldIsOptional)
{
    EXPECT_EQ(decodeProject(replaced("true", "null")).blurBackground, std::nullopt);
    EXPECT_EQ(decodeProject(replaced("\"systemVolume\": 0.5", "\"systemVolume\": null")).systemVolume, std::nullopt);
    EXPECT_EQ(decodeProject(replaced("\"transcript\": []", "\"transcript\": null")).clips[1].transcript, std::nullopt);
    const auto uncropped = decodeProject(replaced("\"screenCrop\": [", "\"screenCrop\": null, \"other\": ["));
    EXPECT_EQ(uncropped.screenCrop, std::nullopt);
    EXPECT_THAT(encodeProject(uncropped), Not(HasSubstr("screenCrop")));
    EXPECT_EQ(errorAfter("\"created\": 86400", "\"created\": null"), "created: expected a number");
}

TEST(ProjectJson, refusesWhatIsMissing)
{
    for (const auto& [key, error] : std::vector<std::pair<std::string, std::string>>{ { "youtube", "youtube: missing" },
             { "created", "created: missing" }, { "name", "name: missing" }, { "clips", "clips: missing" },
             { "layouts", "layouts: missing" }, { "overlays", "overlays: missing" }, { "bubbleSize", "bubbleSize: missing" },
             { "id", "clips[0].id: missing" }, { "keep", "clips[0].keep: missing" },
             { "end", "clips[0].transcript[0].end: missing" }, { "corner", "layouts[0].corner: missing" },
             { "html", "overlays[0].html: missing" }, { "tags", "youtube.tags: missing" } })
        EXPECT_EQ(errorAfter('"' + key + "\":", "\"other\":"), error);
}

TEST(ProjectJson, refusesOtherTypes)
{
    EXPECT_EQ(errorOf("[]"), "expected an object");
    EXPECT_EQ(errorAfter("\"keep\": 3", "\"keep\": \"3\""), "clips[1].keep: expected a number");
    EXPECT_EQ(errorAfter("\"keep\": 3", "\"keep\": true"), "clips[1].keep: expected a number");
    EXPECT_EQ(errorAfter("true", "1"), "blurBackground: expected true or false");
    EXPECT_EQ(errorAfter("\"Recording\"", "7"), "name: expected a text");
    EXPECT_EQ(errorAfter("\"One\"", "7"), "youtube.titles[0]: expected a text");
    EXPECT_EQ(errorAfter("\"transcript\": []", "\"transcript\": {}"), "clips[1].transcript: expected a list");
    EXPECT_EQ(errorAfter("\"titles\": [", "\"titles\": {}, \"other\": ["), "youtube.titles: expected a list");
}

TEST(ProjectJson, refusesUnknownNamesAndIds)
{
    EXPECT_EQ(errorAfter("\"screen\"", "\"Screen\""), "layouts[1].layout: expected one of camera, bubble, screen");
    EXPECT_EQ(
        errorAfter("\"topLeft\"", "\"top\""), "layouts[0].corner: expected one of topLeft, topRight, bottomRight, bottomLeft");
    EXPECT_EQ(errorAfter("\"lowerThird\"", "\"\""), "overlays[0].kind: expected one of bubble, text, lowerThird");
    EXPECT_EQ(errorAfter(firstId.text(), "1"), "clips[0].id: expected a UUID");
}

TEST(ProjectJson, refusesACropThatIsNotTwoPairs)
{
    for (const auto* crop : { "[]", "[[0, 0]]", "[[0, 0], [1]]", "[[0, 0, 0], [1, 1]]", "[[0, 0], [1, 1], [2, 2]]" })
        EXPECT_EQ(errorAfter("\"screenCrop\": [", "\"screenCrop\": " + std::string(crop) + ", \"other\": ["),
            "screenCrop: expected two pairs of numbers");
    EXPECT_EQ(errorAfter("0.05", "\"0\""), "screenCrop[0][1]: expected a number");
}

TEST(ProjectJson, keepsAClipInItsFolder)
{
    for (const auto* file : { "", ".", "..", "/etc/passwd", "../clip.mov", "a/b.mov", "clip.mov\\u0000" })
        EXPECT_EQ(errorAfter("clip-2.mov", file), "clips[1].file: expected a plain file name") << file;
    EXPECT_EQ(errorAfter("clip-2.mov", "..clip .mov"), "");
    EXPECT_THROW(encodeProject({ .clips = { Clip{ .file = "../clip.mov" } } }), AppError);
}

TEST(ProjectJson, readsEveryFormOfJson)
{
    const auto number = [](const std::string& text) { return decodeProject(replaced("0.26", text)).bubbleSize; };
    EXPECT_EQ(number("26e-2"), 0.26);
    EXPECT_EQ(number("1E0"), 1);
    EXPECT_EQ(number("-3"), -3);
    EXPECT_EQ(number("18446744073709551616"), 0x1p64);
    EXPECT_EQ(decodeProject(replaced("</div>", "<\\/div>")).overlays[0].html, "<div style='color:red'>Hi</div>");
    EXPECT_EQ(decodeProject(replaced("Recording", "\\ud83d\\ude00")).name, "😀");
    EXPECT_EQ(decodeProject(replaced("\"Recording\"", "\"a\", \"name\": \"b\"")).name, "b");
    EXPECT_EQ(decodeProject(replaced("\"name\"", "\"future\": {\"deep\": [[1, null]]}, \"name\"")).name, "Recording");
}

TEST(ProjectJson, numbersReadBackToTheSameValue)
{
    for (const auto number :
        { 0.1, 1.0 / 3, 0.0, -0.0, 5e-324, 1.7976931348623157e308, 0x1p53, 0x1p53 + 2, -0x1p60, 1e21, 123456789.123456789 }) {
        const auto bytes = encodeProject(numbered(number));
        const auto back = decodeProject(bytes).bubbleSize;
        EXPECT_EQ(back, number);
        EXPECT_EQ(std::signbit(back), std::signbit(number)) << number;
        EXPECT_EQ(encodeProject(decodeProject(bytes)), bytes);
    }
    EXPECT_THAT(encodeProject(numbered(0.1)), HasSubstr("\"bubbleSize\": 0.1,"));
}

TEST(ProjectJson, doesNotWriteWhatJsonCannotHold)
{
    for (const auto number : { std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN() })
        EXPECT_THROW(encodeProject(numbered(number)), AppError);
    EXPECT_THROW(encodeProject({ .name = "\xff" }), AppError);
    EXPECT_THROW(encodeProject({ .youtube = { .titles = std::vector<std::string>(mostProjectValues) } }), AppError);
    EXPECT_THROW(encodeProject({ .name = std::string(largestProjectFile, 'a') }), AppError);
}

TEST(ProjectJson, namesTheLineOfBrokenJson)
{
    EXPECT_EQ(errorOf(""), "line 1, column 1: not valid JSON");
    EXPECT_EQ(errorOf("{\n  \"name\": ?\n}"), "line 2, column 11: not valid JSON");
    EXPECT_THAT(errorOf(fullFile.substr(0, fullFile.size() / 2)), HasSubstr("not valid JSON"));
    EXPECT_THAT(errorOf(std::string(fullFile) + "{}"), HasSubstr("not valid JSON"));
    EXPECT_THAT(errorOf(std::string(fullFile) + '\0' + "{}"), HasSubstr("not valid JSON"));
    EXPECT_THAT(errorAfter("Recording", "\xc3\x28"), HasSubstr("not valid JSON"));
    EXPECT_THAT(errorAfter("Recording", "\\ud800"), HasSubstr("not valid JSON"));
}

TEST(ProjectJson, survivesHostileFiles)
{
    EXPECT_EQ(errorAfter("0.26", "1e999"), "line 3, column 21: the number is too large");
    EXPECT_THAT(errorAfter("\"name\"", "\"a\": -1e400, \"name\""), HasSubstr("the number is too large"));
    EXPECT_EQ(errorOf(std::string(1 << 20, '[')), "nested too deeply");
    std::string nested;
    for (int depth = 0; depth < 100'000; ++depth)
        nested += "{\"a\":";
    EXPECT_EQ(errorOf(nested), "nested too deeply");
    for (const std::string value : { "[]", "{\"\":{}}", "\"\"" }) {
        std::string crowd = '[' + value;
        while (crowd.size() < largestProjectFile / 4)
            crowd += ',' + value;
        EXPECT_EQ(errorOf(crowd), "too many values") << value;
    }
    EXPECT_EQ(errorOf(std::string(100 << 20, ' ')), "larger than 64 MB");
}

TEST(Project, overlaysThatDifferOnlyInTheirIdAreNotEqual)
{
    EXPECT_NE(overlayAt(1, 2), overlayAt(1, 2));
}

TEST(Project, cornersKnowTheirSides)
{
    const auto sides = [](Corner corner) { return std::pair(isLeft(corner), isTop(corner)); };
    EXPECT_EQ(sides(Corner::topLeft), std::pair(true, true));
    EXPECT_EQ(sides(Corner::topRight), std::pair(false, true));
    EXPECT_EQ(sides(Corner::bottomRight), std::pair(false, false));
    EXPECT_EQ(sides(Corner::bottomLeft), std::pair(true, false));
}

} // namespace vantry
