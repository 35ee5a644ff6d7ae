#pragma once

#include "media/Packet.h"

#include <filesystem>
#include <memory>

namespace vantry {

class VideoEncoder;
class AudioEncoder;

enum class MovieFormat {
    Clip, ///< QuickTime, as recorded.
    Publish, ///< MP4 with the header first and without edit lists.
};

/// Writes one movie file. One thread at a time.
class Muxer {
public:
    /// Throws AppError when the file cannot be made.
    Muxer(const std::filesystem::path& file, MovieFormat format);
    ~Muxer();

    /// The track's index. All tracks are added before `start`; the encoders must outlive that call.
    int addTrack(const VideoEncoder& encoder);
    int addTrack(const AudioEncoder& encoder);

    /// Writes the header. Throws AppError.
    void start();

    /// Packets of one track come in the order its encoder made them. Throws AppError, for example on a full disk.
    void write(int track, Packet packet);

    /// Completes the file and makes it durable. Throws AppError. A muxer that is destroyed without it leaves an incomplete file.
    void finish();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
