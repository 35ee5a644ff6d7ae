#include "ai/OverlayReply.h"

#include "project/EnumNames.h"
#include "project/JsonValue.h"
#include "project/Timecode.h"
#include "project/Transcript.h"

#include <algorithm>
#include <utility>

namespace vantry::AI {

namespace {

constexpr double minute = 60;

std::vector<Line> saidInTheMinuteBefore(double time, const Project& project)
{
    auto lines = transcript(project);
    std::erase_if(lines, [time](const Line& line) { return line.end <= time - minute || line.start > time; });
    return lines;
}

} // namespace

OverlayReply OverlayReply::decode(const JsonValue& value)
{
    return {
        .kind = value.optionalMember("kind", &JsonValue::text),
        .text = value.optionalMember("text", &JsonValue::text),
        .html = value.optionalMember("html", &JsonValue::text),
        .duration = value.optionalMember("duration", &JsonValue::number),
        .x = value.optionalMember("x", &JsonValue::number),
        .y = value.optionalMember("y", &JsonValue::number),
        .width = value.optionalMember("width", &JsonValue::number),
    };
}

std::string overlaySystemPrompt()
{
    return R"(You design short overlays for a YouTube screen-recording video (16:9, 1920x1080). Reply with ONE JSON object only:
{"kind":"bubble|text|lowerThird","text":"plain-text version","html":"...","duration":4,"x":0.5,"y":0.25,"width":0.4}
- bubble = a pop-up callout / speech bubble; text = a bold title or key-point card; lowerThird = a caption bar near the bottom.
- html: a self-contained HTML fragment with inline CSS only (no <script>, no external images or fonts). It is rendered on a
  transparent background at a CSS width of width×1920 px. Use font-family:-apple-system,system-ui; text at least 36px; strong
  contrast; rounded corners and a soft shadow. Centre the content horizontally (text-align:center wrapper) unless it is a lowerThird.
  Emoji are fine. Lists or short code are fine when asked.
- x, y: centre of the overlay as fractions of the frame, y from the top. Avoid the bottom-right corner (presenter's camera bubble).
- duration: 2–10 seconds, long enough to read.
- Keep text short (max ~12 words) unless asked otherwise. Write in the language of the instruction.)";
}

std::string overlayUserMessage(const std::string& instruction, double at, const Project& project)
{
    const auto said = transcriptText(saidInTheMinuteBefore(at, project));
    return "Instruction: " + instruction + "\nThe overlay appears at " + timecode(at)
        + " in the video.\nWhat was said in the minute before:\n" + (said.empty() ? "(no transcript yet)" : said);
}

Overlay makeOverlay(const OverlayReply& reply, const std::string& instruction, double at)
{
    const auto kind = valueNamed<OverlayKind>(reply.kind.value_or(std::string())).value_or(OverlayKind::bubble);
    auto overlay = Overlay::make(kind, reply.text.value_or(instruction), at);
    overlay.duration = std::clamp(reply.duration.value_or(overlay.duration), 1.0, 30.0);
    overlay.html = reply.html.value_or(overlay.html);
    overlay.x = std::clamp(reply.x.value_or(overlay.x), 0.05, 0.95);
    overlay.y = std::clamp(reply.y.value_or(overlay.y), 0.05, 0.95);
    overlay.width = std::clamp(reply.width.value_or(overlay.width), 0.15, 0.95);
    return overlay;
}

} // namespace vantry::AI
