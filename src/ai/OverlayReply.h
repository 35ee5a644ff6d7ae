#pragma once

#include "project/Project.h"

#include <optional>
#include <string>

namespace vantry {
class JsonValue;
}

namespace vantry::AI {

/// What the assistant suggests for an overlay. All of it may be missing.
struct OverlayReply {
    std::optional<std::string> kind; ///< A name of OverlayKind, if it keeps to the rules.
    std::optional<std::string> text;
    std::optional<std::string> html;
    std::optional<double> duration; ///< Seconds.
    std::optional<double> x; ///< The centre, and the width: fractions of the frame.
    std::optional<double> y;
    std::optional<double> width;

    /// Throws AppError when something is of another type.
    static OverlayReply decode(const JsonValue& value);
};

/// The rules under which the assistant designs overlays.
std::string overlaySystemPrompt();

/// The instruction, the project second at which the overlay appears, and what is said in the minute before.
std::string overlayUserMessage(const std::string& instruction, double at, const Project& project);

/// A new overlay, within sensible limits. What the reply leaves open is as in the ordinary overlay of its kind with the instruction
/// as its text.
Overlay makeOverlay(const OverlayReply& reply, const std::string& instruction, double at);

} // namespace vantry::AI
