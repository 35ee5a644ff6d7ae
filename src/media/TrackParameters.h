#pragma once

#include "media/MovieOutput.h"

#include <string>
#include <string_view>

/// How a track's encoder was set up, as bytes for a file. They hold values only: what the library's structure has besides, and a
/// newer one has more of, points into the memory of the program that wrote them. For the sources of this room only.
namespace vantry::libav {

[[nodiscard]] std::string packed(const AVCodecParameters& parameters);

/// Nothing when the bytes are not what `packed` gives.
[[nodiscard]] ParametersPtr unpacked(std::string_view bytes);

} // namespace vantry::libav
