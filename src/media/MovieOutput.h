#pragma once

#include "media/Libav.h"
#include "media/Muxer.h"

#include <string>

/// How a movie is laid out in its file. For the sources of this room only: whoever writes the same packets with this gets the same
/// bytes in the same places.
namespace vantry::libav {

/// Closes the file too, if the output opened one.
struct OutputDeleter {
    void operator()(AVFormatContext* output) const;
};
using OutputPtr = std::unique_ptr<AVFormatContext, OutputDeleter>;

[[nodiscard]] OutputPtr makeOutput(MovieFormat format, const std::string& url, const std::string& what);

/// A track of packets whose times are in `timeBase`; from the header on they are to be in the stream's own.
AVStream& addStream(AVFormatContext& output, const AVCodecParameters& parameters, AVRational timeBase);

void writeHeader(AVFormatContext& output, MovieFormat format, const std::string& what);

} // namespace vantry::libav
