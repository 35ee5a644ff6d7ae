#pragma once

namespace vantry {

/// The tracks that a clip can hold, in the order in which they stand in the file.
enum class TrackKind {
    screen,
    camera,
    audio, ///< The microphone, mono.
    system, ///< Other applications' sound, stereo.
};

inline constexpr int trackKindCount = 4;

} // namespace vantry
