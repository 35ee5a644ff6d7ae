#pragma once

#include "project/Project.h"

#include <optional>
#include <string>
#include <vector>

namespace vantry {
class JsonValue;
}

namespace vantry::AI {

/// What the assistant writes for publishing a video. All of it may be missing.
struct YouTubeReply {
    struct Chapter {
        double time = 0; ///< Project seconds.
        std::string title;
    };

    std::optional<std::vector<std::string>> titles;
    std::optional<std::string> description;
    std::optional<std::vector<std::string>> tags;
    std::optional<std::vector<Chapter>> chapters;

    /// Throws AppError when something is of another type, or a chapter has no time or no title.
    static YouTubeReply decode(const JsonValue& value);
};

/// The rules under which the assistant writes.
std::string youTubeSystemPrompt();

/// What there is to describe: the project's speech and the texts of its overlays. Nothing when it has neither.
std::optional<std::string> youTubeUserMessage(const Project& project);

/// The details of a project's video, with its chapters in the description. Chapters that the video service would not take are left
/// out, and so are tags that no longer fit in. Without titles the project's title stays.
YouTubeInfo makeYouTubeInfo(const YouTubeReply& reply, const Project& project);

} // namespace vantry::AI
