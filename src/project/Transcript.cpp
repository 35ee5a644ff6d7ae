#include "project/Transcript.h"

#include "project/Timecode.h"

#include <algorithm>

namespace vantry {

std::vector<Line> transcript(const Project& project)
{
    std::vector<Line> spoken;
    double clipStart = 0;
    for (const auto& clip : project.clips) {
        for (const auto& line : clip.transcript.value_or(std::vector<Line>())) {
            if (line.start < clip.keep)
                spoken.push_back(
                    { .start = clipStart + line.start, .end = clipStart + std::min(line.end, clip.keep), .text = line.text });
        }
        clipStart += clip.keep;
    }
    return spoken;
}

std::string transcriptText(const std::vector<Line>& lines)
{
    std::string text;
    for (const auto& line : lines) {
        if (!text.empty())
            text += '\n';
        text += '[' + timecode(line.start) + "] " + line.text;
    }
    return text;
}

std::string transcriptText(const Project& project)
{
    return transcriptText(transcript(project));
}

} // namespace vantry
