#pragma once

#include "base/AppError.h"

#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

/// Ownership of the media libraries' objects, and their errors as ours. For the sources of this room only.
namespace vantry::libav {

template <auto Free>
struct Deleter {
    template <typename T>
    void operator()(T* object) const
    {
        Free(&object);
    }
};

using FramePtr = std::unique_ptr<AVFrame, Deleter<av_frame_free>>;
using PacketPtr = std::unique_ptr<AVPacket, Deleter<av_packet_free>>;
using CodecContextPtr = std::unique_ptr<AVCodecContext, Deleter<avcodec_free_context>>;
using ParametersPtr = std::unique_ptr<AVCodecParameters, Deleter<avcodec_parameters_free>>;
using InputPtr = std::unique_ptr<AVFormatContext, Deleter<avformat_close_input>>;
struct ScalerDeleter {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
using ScalerPtr = std::unique_ptr<SwsContext, ScalerDeleter>;
using ResamplerPtr = std::unique_ptr<SwrContext, Deleter<swr_free>>;

/// The library's own words for an error code.
std::string errorText(int code);

/// Gives `code` back, or throws what went wrong: "`what`: " and the library's own words.
int check(int code, const std::string& what);

/// Throws when the library had no memory.
[[nodiscard]] FramePtr makeFrame();
[[nodiscard]] PacketPtr makePacket();
[[nodiscard]] ParametersPtr makeParameters();

} // namespace vantry::libav
