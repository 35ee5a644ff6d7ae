#pragma once

#include "media/Libav.h"
#include "media/Packet.h"

/// What the encoders have in common. For the sources of this room only.
namespace vantry::libav {

/// An encoder that is not open yet. Throws AppError when the library was built without it.
[[nodiscard]] CodecContextPtr makeEncoder(const char* name);

/// One of the encoder's own options. Throws AppError when it does not know it.
void setOption(AVCodecContext& encoder, const char* name, const std::string& value);

/// Throws AppError when the encoder refuses its settings.
void openEncoder(AVCodecContext& encoder);

/// Hands `frame` over, or the end where there is none, and gives out what is ready. Throws AppError.
void encode(AVCodecContext& encoder, const AVFrame* frame, const PacketSink& sink);

} // namespace vantry::libav
