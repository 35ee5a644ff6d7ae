#include "project/ProjectDecoder.h"
#include "project/ProjectEncoder.h"

#include "base/AppError.h"
#include "project/DurableFile.h"
#include "project/ProjectLimits.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace vantry {

using testing::HasSubstr;
using testing::Not;

namespace {

const auto id = *Uuid::parse("11111111-2222-4333-8444-5555555555AA");

/// With every field, as it is written.
const std::string written = readFile(WRITTEN_PROJECT, largestProjectFile);

std::string replaced(std::string_view from, std::string_view to)
{
    std::string file(written);
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

TEST(ProjectJson, writesEveryFieldInItsPlaceAndReadsItBack)
{
    const Project project{
        .name = "Recording",
        .created = { 86400 },
        .clips = { { id, "clip-1763324703.mov", 10.5, 10, { { { 0.1, 2.75, "Grüße \"you\" \\ there\n" } } } },
            { id, "clip-2.mov", 3, 3, std::vector<Line>() }, { id, "clip-3.mov", 4, 0, std::nullopt } },
        .layouts = { { 0, Layout::bubble, Corner::topLeft }, { 5.5, Layout::screen, Corner::bottomLeft } },
        .overlays = { { id, 1.5, 4, OverlayKind::lowerThird, "Hi", "<div style='color:red'>Hi</div>", 0.5, 0.8, 0.4 } },
        .bubbleSize = 0.26,
        .systemVolume = 0.5,
        .blurBackground = true,
        .screenCrop = CropRect{ 0, 0.05, 1, 0.95 },
        .youtube = { "Title", { "One", "Two" }, "About", "a, b" },
    };
    EXPECT_EQ(encodeProject(project), written);
    EXPECT_EQ(encodeProject(decodeProject(written)), written);
}

TEST(ProjectJson, leavesOutWhatIsAbsent)
{
    const auto bytes = encodeProject({ .created = {}, .layouts = { LayoutEvent() } });
    for (const auto* key : { "systemVolume", "blurBackground", "screenCrop", "transcript", "null" })
        EXPECT_THAT(bytes, Not(HasSubstr(key)));
    EXPECT_THAT(bytes, HasSubstr("\"clips\": [],\n  \"created\": 0,\n"));
    EXPECT_EQ(encodeProject(decodeProject(bytes)), bytes);
}

TEST(ProjectJson, takesNullForAbsentOnlyWhereAFieldIsOptional)
{
    EXPECT_EQ(decodeProject(replaced("true", "null")).blurBackground, std::nullopt);
    EXPECT_EQ(decodeProject(replaced("\"systemVolume\": 0.5", "\"systemVolume\": null")).systemVolume, std::nullopt);
    EXPECT_EQ(decodeProject(replaced("\"transcript\": []", "\"transcript\": null")).clips[1].transcript, std::nullopt);
    EXPECT_EQ(decodeProject(replaced("\"screenCrop\": [", "\"screenCrop\": null, \"other\": [")).screenCrop, std::nullopt);
    EXPECT_EQ(errorAfter("\"created\": 86400", "\"created\": null"), "created: expected a number");
}

TEST(ProjectJson, refusesWhatIsMissingOrSomethingElse)
{
    struct Case {
        std::string_view from, to, error;
    };
    for (const auto& [from, to, error] : std::vector<Case>{
             { "\"bubbleSize\":", "\"other\":", "bubbleSize: missing" },
             { "\"youtube\":", "\"other\":", "youtube: missing" },
             { "\"end\":", "\"other\":", "clips[0].transcript[0].end: missing" },
             { "\"keep\": 3", "\"keep\": \"3\"", "clips[1].keep: expected a number" },
             { "\"keep\": 3", "\"keep\": true", "clips[1].keep: expected a number" },
             { "true", "1", "blurBackground: expected true or false" },
             { "\"One\"", "7", "youtube.titles[0]: expected a text" },
             { "\"transcript\": []", "\"transcript\": {}", "clips[1].transcript: expected a list" },
             { "\"screen\"", "\"Screen\"", "layouts[1].layout: expected one of camera, bubble, screen" },
             { "\"lowerThird\"", "\"\"", "overlays[0].kind: expected one of bubble, text, lowerThird" },
             { "11111111-", "1", "clips[0].id: expected a UUID" },
             { "0.05", "\"0\"", "screenCrop[0][1]: expected a number" },
             { "0.05", "0.05, 1", "screenCrop: expected two pairs of numbers" },
             { "\"screenCrop\": [", "\"screenCrop\": [], \"other\": [", "screenCrop: expected two pairs of numbers" },
         })
        EXPECT_EQ(errorAfter(from, to), error);
    EXPECT_EQ(errorOf("[]"), "expected an object");
}

TEST(ProjectJson, keepsAClipInItsFolder)
{
    for (const auto* file : { "", ".", "..", "/etc/passwd", "../clip.mov", "a/b.mov", "clip.mov\\u0000" })
        EXPECT_EQ(errorAfter("clip-2.mov", file), "clips[1].file: expected a plain file name") << file;
    EXPECT_EQ(errorAfter("clip-2.mov", "..clip .mov"), "");
    EXPECT_THROW(encodeProject({ .clips = { Clip{ .file = "../clip.mov" } } }), AppError);
}

TEST(ProjectJson, readsWhatOthersMayHaveWritten)
{
    EXPECT_EQ(decodeProject(replaced("0.26", "18446744073709551616")).bubbleSize, 0x1p64);
    EXPECT_EQ(decodeProject(replaced("\"Recording\"", "\"a\", \"name\": \"b\"")).name, "b");
    EXPECT_EQ(decodeProject(replaced("\"name\"", "\"future\": {\"deep\": [[1, null]]}, \"name\"")).name, "Recording");
}

TEST(ProjectJson, numbersReadBackToTheSameValue)
{
    for (const auto number : { 0.1, 1.0 / 3, 0.0, -0.0, 5e-324, 1.7976931348623157e308, 0x1p53 + 2, -0x1p60 }) {
        const auto bytes = encodeProject(numbered(number));
        const auto back = decodeProject(bytes).bubbleSize;
        EXPECT_EQ(back, number);
        EXPECT_EQ(std::signbit(back), std::signbit(number)) << number;
    }
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
    EXPECT_THAT(errorOf(written + "{}"), HasSubstr("not valid JSON"));
    EXPECT_THAT(errorOf(written + '\0' + "{}"), HasSubstr("not valid JSON"));
    EXPECT_THAT(errorAfter("Recording", "\xc3\x28"), HasSubstr("not valid JSON"));
}

TEST(ProjectJson, survivesHostileFiles)
{
    EXPECT_EQ(errorAfter("0.26", "1e999"), "line 3, column 21: the number is too large");
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

} // namespace vantry
