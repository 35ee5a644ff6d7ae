#pragma once

/// What things of this platform are called. A port to another one changes this file.
namespace vantry::words {

// The keys that work in every program.
inline constexpr auto recordKeys = "Ctrl+Alt+R";
inline constexpr auto backKeys = "Ctrl+Alt+B";
inline constexpr auto cameraKeys = "Ctrl+Alt+1";
inline constexpr auto bubbleKeys = "Ctrl+Alt+2";
inline constexpr auto screenKeys = "Ctrl+Alt+3";
inline constexpr auto cornerKeys = "Ctrl+Alt+C";

// Keys of the window.
inline constexpr auto startKey = "Enter";

// What has to be allowed.
inline constexpr auto allowLooking =
    "Allow Vantry to look at other windows' contents, then click again. It is used only to find where "
    "the page starts.";

} // namespace vantry::words
