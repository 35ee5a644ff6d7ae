#pragma once

#include "media/MediaTime.h"
#include "media/Packet.h"
#include "media/Picture.h"

#include <string>

struct AVCodecContext;

namespace vantry {

enum class VideoCodec { H264, Hevc };

struct VideoEncoderSettings {
    VideoCodec codec = VideoCodec::H264;
    int width = 0; ///< Even.
    int height = 0;
    int timescale = 90000; ///< Units of a second that times are rounded to.
    int frameRate = 0; ///< Constant frames per second, or 0 for variable times.
    int bitRate = 0; ///< Average bits per second, or 0 for constant quality.
    double constantQuality = 20; ///< The encoder's CRF, where `bitRate` is 0.
    int gop = 0; ///< Greatest distance between keyframes in frames.
    int bFrames = 0;
    int threads = 0; ///< 0: as many as the encoder likes.
    std::string preset; ///< The encoder's own name for its speed.
    std::string parameters; ///< The encoder's own options, "name=value:name=value".
    bool globalHeader = true; ///< The codec's headers go into the file's header.
};

/// What the next picture must be.
enum class PictureKind { Any, Keyframe };

/// Encodes 4:2:0 pictures, tagged BT.709 limited. One thread at a time.
class VideoEncoder {
public:
    /// Throws AppError when the encoder cannot be had with these settings.
    explicit VideoEncoder(const VideoEncoderSettings& settings);
    ~VideoEncoder();

    /// Times must grow from call to call. The picture's pixels are no longer needed on return. Throws AppError.
    void encode(const Picture& picture, MediaTime time, PictureKind kind, const PacketSink& sink);

    /// Gives out what is still inside; nothing can be encoded after it.
    void finish(const PacketSink& sink);

    /// For `Muxer`.
    const AVCodecContext& context() const { return *m_context; }

private:
    AVCodecContext* m_context = nullptr;
};

} // namespace vantry
