#include "project/ProjectDecoder.h"

#include "project/EnumNames.h"
#include "project/JsonDocument.h"
#include "project/JsonValue.h"
#include "project/ProjectLimits.h"

namespace vantry {

namespace {

template <typename Enum>
Enum decodeEnum(const JsonValue& value)
{
    if (const auto known = valueNamed<Enum>(value.text()))
        return *known;
    std::string expected;
    for (const auto name : enumNames<Enum>)
        expected += (expected.empty() ? "" : ", ") + std::string(name);
    value.fail("expected one of " + expected);
}

Uuid decodeUuid(const JsonValue& value)
{
    const auto uuid = Uuid::parse(value.text());
    if (!uuid)
        value.fail("expected a UUID");
    return *uuid;
}

std::string decodeFileName(const JsonValue& value)
{
    if (!isPlainFileName(value.text()))
        value.fail("expected a plain file name");
    return value.text();
}

Line decodeLine(const JsonValue& value)
{
    return {
        .start = value.member("start").number(),
        .end = value.member("end").number(),
        .text = value.member("text").text(),
    };
}

Clip decodeClip(const JsonValue& value)
{
    return {
        .id = decodeUuid(value.member("id")),
        .file = decodeFileName(value.member("file")),
        .duration = value.member("duration").number(),
        .keep = value.member("keep").number(),
        .transcript = value.optionalMember("transcript", [](const JsonValue& lines) { return lines.list(decodeLine); }),
    };
}

LayoutEvent decodeLayoutEvent(const JsonValue& value)
{
    return {
        .time = value.member("time").number(),
        .layout = decodeEnum<Layout>(value.member("layout")),
        .corner = decodeEnum<Corner>(value.member("corner")),
    };
}

Overlay decodeOverlay(const JsonValue& value)
{
    return {
        .id = decodeUuid(value.member("id")),
        .start = value.member("start").number(),
        .duration = value.member("duration").number(),
        .kind = decodeEnum<OverlayKind>(value.member("kind")),
        .text = value.member("text").text(),
        .html = value.member("html").text(),
        .x = value.member("x").number(),
        .y = value.member("y").number(),
        .width = value.member("width").number(),
    };
}

CropRect decodeCrop(const JsonValue& value)
{
    const auto pairs = value.list([](const JsonValue& pair) { return pair.list(&JsonValue::number); });
    if (pairs.size() != 2 || pairs[0].size() != 2 || pairs[1].size() != 2)
        value.fail("expected two pairs of numbers");
    return { .x = pairs[0][0], .y = pairs[0][1], .width = pairs[1][0], .height = pairs[1][1] };
}

YouTubeInfo decodeYouTube(const JsonValue& value)
{
    return {
        .title = value.member("title").text(),
        .titles = value.member("titles").list(&JsonValue::text),
        .description = value.member("description").text(),
        .tags = value.member("tags").text(),
    };
}

Project decode(const JsonValue& value)
{
    return {
        .name = value.member("name").text(),
        .created = { value.member("created").number() },
        .clips = value.member("clips").list(decodeClip),
        .layouts = value.member("layouts").list(decodeLayoutEvent),
        .overlays = value.member("overlays").list(decodeOverlay),
        .bubbleSize = value.member("bubbleSize").number(),
        .systemVolume = value.optionalMember("systemVolume", &JsonValue::number),
        .blurBackground = value.optionalMember("blurBackground", &JsonValue::boolean),
        .screenCrop = value.optionalMember("screenCrop", decodeCrop),
        .youtube = decodeYouTube(value.member("youtube")),
    };
}

} // namespace

Project decodeProject(std::string_view bytes)
{
    const auto document = parseJson(bytes);
    return decode(JsonValue(document));
}

} // namespace vantry
