#include "project/ProjectEncoder.h"

#include "base/AppError.h"
#include "project/EnumNames.h"
#include "project/JsonValue.h"
#include "project/ProjectLimits.h"

#include <cmath>
#include <cstdint>

namespace vantry {

namespace {

constexpr int indentation = 2;

/// Whole numbers go without a fraction, as far as every one of them is a double and the other way round.
Json encodeNumber(double number)
{
    constexpr double largestWhole = 0x1p53;
    const bool isNegativeZero = number == 0 && std::signbit(number);
    if (std::trunc(number) == number && std::abs(number) <= largestWhole && !isNegativeZero)
        return static_cast<std::int64_t>(number);
    return number;
}

template <typename T, typename Encode>
Json encodeList(const std::vector<T>& values, Encode encode)
{
    auto list = Json::array();
    for (const auto& value : values)
        list.push_back(encode(value));
    return list;
}

Json encodeLine(const Line& line)
{
    return { { "start", encodeNumber(line.start) }, { "end", encodeNumber(line.end) }, { "text", line.text } };
}

Json encodeClip(const Clip& clip)
{
    if (!isPlainFileName(clip.file))
        throw AppError('"' + clip.file + "\": not a plain file name");
    Json json{
        { "id", clip.id.text() },
        { "file", clip.file },
        { "duration", encodeNumber(clip.duration) },
        { "keep", encodeNumber(clip.keep) },
    };
    if (clip.transcript)
        json["transcript"] = encodeList(*clip.transcript, encodeLine);
    return json;
}

Json encodeLayoutEvent(const LayoutEvent& event)
{
    return { { "time", encodeNumber(event.time) }, { "layout", nameOf(event.layout) }, { "corner", nameOf(event.corner) } };
}

Json encodeOverlay(const Overlay& overlay)
{
    return {
        { "id", overlay.id.text() },
        { "start", encodeNumber(overlay.start) },
        { "duration", encodeNumber(overlay.duration) },
        { "kind", nameOf(overlay.kind) },
        { "text", overlay.text },
        { "html", overlay.html },
        { "x", encodeNumber(overlay.x) },
        { "y", encodeNumber(overlay.y) },
        { "width", encodeNumber(overlay.width) },
    };
}

Json encodeCrop(const CropRect& crop)
{
    return Json::array({
        Json::array({ encodeNumber(crop.x), encodeNumber(crop.y) }),
        Json::array({ encodeNumber(crop.width), encodeNumber(crop.height) }),
    });
}

Json encodeYouTube(const YouTubeInfo& youtube)
{
    return {
        { "title", youtube.title },
        { "titles", youtube.titles },
        { "description", youtube.description },
        { "tags", youtube.tags },
    };
}

Json encode(const Project& project)
{
    Json json{
        { "name", project.name },
        { "created", encodeNumber(project.created.secondsSince2001) },
        { "clips", encodeList(project.clips, encodeClip) },
        { "layouts", encodeList(project.layouts, encodeLayoutEvent) },
        { "overlays", encodeList(project.overlays, encodeOverlay) },
        { "bubbleSize", encodeNumber(project.bubbleSize) },
        { "youtube", encodeYouTube(project.youtube) },
    };
    if (project.systemVolume)
        json["systemVolume"] = encodeNumber(*project.systemVolume);
    if (project.blurBackground)
        json["blurBackground"] = *project.blurBackground;
    if (project.screenCrop)
        json["screenCrop"] = encodeCrop(*project.screenCrop);
    return json;
}

void checkValues(const Json& document)
{
    std::size_t values = 0;
    JsonValue(document).forEach([&](const JsonValue& value) {
        if (++values > mostProjectValues)
            throw AppError("too many values");
        if (!value.isFinite())
            value.fail("not a finite number");
    });
}

} // namespace

std::string encodeProject(const Project& project)
{
    const auto document = encode(project);
    checkValues(document);
    try {
        auto bytes = document.dump(indentation) + '\n';
        if (bytes.size() > largestProjectFile)
            throw AppError(tooLargeText);
        return bytes;
    } catch (const Json::type_error&) {
        throw AppError("a text is not valid UTF-8");
    }
}

} // namespace vantry
