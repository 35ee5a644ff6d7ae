#include "project/ProjectDecoder.h"

#include "project/EnumNames.h"
#include "project/JsonDocument.h"
#include "project/JsonValue.h"
#include "project/ProjectLimits.h"

#include <functional>

namespace vantry {

namespace {

template <typename Decode>
auto decodeList(const JsonValue& value, Decode decode)
{
    std::vector<decltype(decode(value))> list;
    list.reserve(value.size());
    for (std::size_t position = 0; position < value.size(); ++position)
        list.push_back(decode(value.element(position)));
    return list;
}

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
    Clip clip{
        .id = decodeUuid(value.member("id")),
        .file = decodeFileName(value.member("file")),
        .duration = value.member("duration").number(),
        .keep = value.member("keep").number(),
        .transcript = std::nullopt,
    };
    if (const auto transcript = value.optionalMember("transcript"))
        clip.transcript = decodeList(*transcript, decodeLine);
    return clip;
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
    const auto pairs = decodeList(value, [](const JsonValue& pair) { return decodeList(pair, std::mem_fn(&JsonValue::number)); });
    if (pairs.size() != 2 || pairs[0].size() != 2 || pairs[1].size() != 2)
        value.fail("expected two pairs of numbers");
    return { .x = pairs[0][0], .y = pairs[0][1], .width = pairs[1][0], .height = pairs[1][1] };
}

YouTubeInfo decodeYouTube(const JsonValue& value)
{
    return {
        .title = value.member("title").text(),
        .titles = decodeList(value.member("titles"), [](const JsonValue& title) { return title.text(); }),
        .description = value.member("description").text(),
        .tags = value.member("tags").text(),
    };
}

Project decode(const JsonValue& value)
{
    Project project{
        .name = value.member("name").text(),
        .created = { value.member("created").number() },
        .clips = decodeList(value.member("clips"), decodeClip),
        .layouts = decodeList(value.member("layouts"), decodeLayoutEvent),
        .overlays = decodeList(value.member("overlays"), decodeOverlay),
        .bubbleSize = value.member("bubbleSize").number(),
        .youtube = decodeYouTube(value.member("youtube")),
    };
    if (const auto volume = value.optionalMember("systemVolume"))
        project.systemVolume = volume->number();
    if (const auto blur = value.optionalMember("blurBackground"))
        project.blurBackground = blur->boolean();
    if (const auto crop = value.optionalMember("screenCrop"))
        project.screenCrop = decodeCrop(*crop);
    return project;
}

} // namespace

Project decodeProject(std::string_view bytes)
{
    const auto document = parseJson(bytes);
    return decode(JsonValue(document));
}

} // namespace vantry
