#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace vantry {

/// What can be missing in a recording.
enum class CaptureSource { MediaServer, Camera, Microphone, SystemSound };
inline constexpr std::size_t captureSourceCount = 4;

/// Told when what the user should know of a source has changed: its trouble, or nothing when there is none any more.
using TroubleHandler = std::function<void(CaptureSource source, const std::optional<std::string>& trouble)>;

} // namespace vantry
