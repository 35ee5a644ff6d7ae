#include "ai/YouTubeReply.h"

#include "ai/Characters.h"
#include "project/JsonValue.h"
#include "project/Timecode.h"
#include "project/Timeline.h"
#include "project/Transcript.h"

#include <algorithm>

namespace vantry::AI {

namespace {

using Chapter = YouTubeReply::Chapter;

constexpr double shortestChapter = 10; // seconds
constexpr std::size_t mostTagCharacters = 480; // all together; the service takes 500
constexpr std::string_view tagSeparator = ", ";

Chapter decodeChapter(const JsonValue& value)
{
    return { .time = value.member("time").number(), .title = value.member("title").text() };
}

void appendLine(std::string& text, const std::string& line)
{
    if (!text.empty())
        text += '\n';
    text += line;
}

std::string onScreenText(const Project& project)
{
    std::string text;
    for (const auto& overlay : project.overlays)
        appendLine(text, '[' + timecode(overlay.start) + "] on-screen: " + overlay.text);
    return text;
}

/// The first one begins at the video's start, whenever it was meant to.
std::string chapterLines(std::vector<Chapter> chapters, double length)
{
    std::ranges::stable_sort(chapters, {}, &Chapter::time);
    std::string lines;
    double previous = -100;
    for (std::size_t position = 0; position < chapters.size(); ++position) {
        const auto& chapter = chapters[position];
        if (!(chapter.time < length))
            continue;
        const double shown = position == 0 ? 0 : chapter.time;
        if (shown - previous < shortestChapter)
            continue;
        appendLine(lines, timecode(shown) + ' ' + chapter.title);
        previous = shown;
    }
    return lines;
}

/// A tag that would be too much is left out; a shorter one after it may still fit.
std::string joinedTags(const std::vector<std::string>& tags)
{
    std::string joined;
    std::size_t characters = 0;
    bool isFirst = true;
    for (const auto& tag : tags) {
        const auto addition = isFirst ? tag : std::string(tagSeparator) + tag;
        const auto count = characterCount(addition);
        if (characters + count > mostTagCharacters)
            continue;
        joined += addition;
        characters += count;
        isFirst = false;
    }
    return joined;
}

} // namespace

YouTubeReply YouTubeReply::decode(const JsonValue& value)
{
    const auto texts = [](const JsonValue& list) { return list.list(&JsonValue::text); };
    return {
        .titles = value.optionalMember("titles", texts),
        .description = value.optionalMember("description", &JsonValue::text),
        .tags = value.optionalMember("tags", texts),
        .chapters = value.optionalMember("chapters", [](const JsonValue& list) { return list.list(decodeChapter); }),
    };
}

std::string youTubeSystemPrompt()
{
    return R"(You are a YouTube publishing assistant. Given a video's transcript with [m:ss] timestamps, reply with ONE JSON object only:
{"titles":["...","...","..."],"description":"...","tags":["..."],"chapters":[{"time":0,"title":"..."}]}
- titles: 3 options, at most 70 characters, compelling but honest.
- description: a hook in the first 150 characters with the main keywords, then a short paragraph and a bullet list of what
  viewers learn. Do NOT include chapters (they are added separately). At most 3 hashtags at the very end.
- tags: 10–20 search phrases people would type, together under 450 characters.
- chapters: 3–12 at real topic changes; time in seconds; the first at 0; at least 10 seconds apart; short titles.
- Write in the transcript's language.)";
}

std::optional<std::string> youTubeUserMessage(const Project& project)
{
    const auto speech = transcriptText(project);
    const auto onScreen = onScreenText(project);
    if (speech.empty() && onScreen.empty())
        return std::nullopt;
    return "Working title: " + project.name + "\nLength: " + timecode(totalLength(project)) + "\nTranscript:\n" + speech + '\n'
        + (onScreen.empty() ? std::string() : "On-screen text:\n" + onScreen);
}

YouTubeInfo makeYouTubeInfo(const YouTubeReply& reply, const Project& project)
{
    YouTubeInfo info = project.youtube;
    info.titles = reply.titles.value_or(std::vector<std::string>());
    if (!info.titles.empty())
        info.title = info.titles.front();
    info.description = trimmed(reply.description.value_or(std::string()));
    const auto chapters = chapterLines(reply.chapters.value_or(std::vector<Chapter>()), totalLength(project));
    if (!chapters.empty())
        info.description += "\n\nChapters\n" + chapters;
    info.tags = joinedTags(reply.tags.value_or(std::vector<std::string>()));
    return info;
}

} // namespace vantry::AI
