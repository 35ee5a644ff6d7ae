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
    int timescale = 90000; ///< Units of a second that variable times are rounded to.
    int frameRate = 0; ///< Constant frames per second, or 0 for variable times.
    int bitRate = 0; ///< Average bits per second, or 0 for constant quality.
    double constantQuality = 20; ///< The encoder's CRF, where `bitRate` is 0.
    int gop = 0; ///< Frames from keyframe to keyframe: exactly where the frame rate is constant, at most where it is not. 0: the
                 ///< encoder's choice.
    int bFrames = 0;
    int threads = 0; ///< 0: as many as the encoder likes.
    std::string preset{}; ///< The encoder's own name for its speed.
    std::string parameters{}; ///< The encoder's own options, "name=value:name=value".
    bool globalHeader = true; ///< The codec's headers go into the file's header.
};

/// What the next picture must be.
enum class PictureKind { Any, Keyframe };

/// Encodes 4:2:0 pictures to H.264 High or HEVC Main with closed groups of pictures, tagged as what `Picture` promises: BT.709,
/// limited range, chroma in the centre. One thread at a time.
class VideoEncoder {
public:
    /// Throws AppError when the encoder cannot be had with these settings.
    explicit VideoEncoder(const VideoEncoderSettings& settings);
    ~VideoEncoder();

    /// Pictures have the settings' size. Times must grow by at least a unit of the timescale (a frame, where the rate is constant)
    /// from call to call. Throws AppError.
    void encode(const Picture& picture, MediaTime time, PictureKind kind, const PacketSink& sink);

    /// Gives out what is still inside; nothing can be encoded after it.
    void finish(const PacketSink& sink);

    /// For `Muxer`.
    const AVCodecContext& context() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
