#pragma once

#include "project/Uuid.h"

#include <optional>
#include <string>
#include <vector>

namespace vantry {

/// What fills the frame from a moment on.
enum class Layout {
    camera, ///< The camera fills the frame.
    bubble, ///< The screen with the camera in a round bubble in a corner.
    screen, ///< The screen alone.
};

/// Clockwise from the top left.
enum class Corner { topLeft, topRight, bottomRight, bottomLeft };

constexpr bool isLeft(Corner corner)
{
    return corner == Corner::topLeft || corner == Corner::bottomLeft;
}
constexpr bool isTop(Corner corner)
{
    return corner == Corner::topLeft || corner == Corner::topRight;
}

enum class OverlayKind {
    bubble, ///< A pop-up callout or speech bubble.
    text, ///< A bold title or key-point card.
    lowerThird, ///< A caption bar near the bottom.
};

/// One line of speech, in clip seconds (in project seconds where a project's transcript is asked for).
struct Line {
    double start = 0;
    double end = 0;
    std::string text;

    bool operator==(const Line&) const = default;
};

/// One take: a movie file in the project's folder, of which the first `keep` seconds belong to the timeline.
struct Clip {
    Uuid id = Uuid::random();
    std::string file; ///< A plain file name.
    double duration = 0; ///< Seconds of the movie; never changed by edits.
    double keep = 0; ///< Seconds, from 0 to `duration`.
    std::optional<std::vector<Line>> transcript; ///< Absent: not transcribed yet. Empty: no speech.
};

/// From `time` on the frame shows `layout`, with the camera bubble in `corner`.
struct LayoutEvent {
    double time = 0; ///< Project seconds.
    Layout layout = Layout::camera;
    Corner corner = Corner::bottomRight;

    bool operator==(const LayoutEvent&) const = default;
};

/// A timed HTML fragment. Its centre is at (`x`, `y`), fractions of the frame, `y` from the top.
struct Overlay {
    Uuid id = Uuid::random();
    double start = 0; ///< Project seconds.
    double duration = 0; ///< Seconds.
    OverlayKind kind = OverlayKind::bubble;
    std::string text; ///< The plain text it was made from.
    std::string html;
    double x = 0.5;
    double y = 0.5;
    double width = 0.5; ///< Fraction of the frame's width.

    /// A new one from plain text: the kind's own look, place and duration, from the project second `at` on.
    static Overlay make(OverlayKind kind, std::string text, double at);

    bool operator==(const Overlay&) const = default;
};

/// Fractions of the recorded screen, from its top left corner, y downwards.
struct CropRect {
    double x = 0;
    double y = 0;
    double width = 1;
    double height = 1;

    bool operator==(const CropRect&) const = default;
};

struct YouTubeInfo {
    std::string title;
    std::vector<std::string> titles; ///< Alternatives to choose from.
    std::string description;
    std::string tags; ///< All of them, separated by a comma and a space.
};

/// A moment of the calendar, in seconds since 2001-01-01 00:00:00 UTC.
struct Timestamp {
    double secondsSince2001 = 0;

    static Timestamp now();

    auto operator<=>(const Timestamp&) const = default;
};

/// A recording: clips played back to back as one timeline, and everything that is placed on it. A plain value; a change is made on
/// a copy that then replaces the whole.
struct Project {
    std::string name;
    Timestamp created = Timestamp::now();
    std::vector<Clip> clips;
    std::vector<LayoutEvent> layouts; ///< Ascending by time. Never empty in a project that we made; a file may say otherwise.
    std::vector<Overlay> overlays; ///< In the order they were added.
    double bubbleSize = 0.26; ///< The bubble's diameter as a fraction of the frame's height.
    std::optional<double> systemVolume; ///< Gain of other applications' sound; absent is 1.
    std::optional<bool> blurBackground; ///< Absent is off.
    std::optional<CropRect> screenCrop; ///< The part of the screen that is shown; absent is all of it.
    YouTubeInfo youtube;
};

} // namespace vantry
