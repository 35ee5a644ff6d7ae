#pragma once

#include "media/MediaTime.h"
#include "media/Packet.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace vantry {

class VideoEncoder;
class AudioEncoder;

enum class MovieFormat {
    Clip, ///< QuickTime, as recorded: tracks may begin late, pictures have times of their own.
    Publish, ///< MP4 with the header first and without edit lists: every track begins at 0.
};

/// Writes one movie file. A clip has a journal beside it, from which it is completed when it is finished, or after a crash
/// (`completeMovie`): an hour takes no more memory than a minute. Whoever has put the finished clip into a project removes it.
/// Time 0 of every encoder is the movie's time 0, to the sample. One thread at a time.
///
/// AAC decodes to some silence ahead of the first sample. A clip's edit list tells readers to cut it off; a published movie leaves
/// out the packet that makes it, at the price of a fade-in within the sound's first 21 ms.
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

    /// Packets of one track come in the order its encoder made them. A track that never gets one is not in the file. Throws
    /// AppError, for example on a full disk.
    void write(int track, Packet packet);

    /// Completes the file and makes it durable. With an `end`, each video track's last picture lasts until then. Throws AppError,
    /// also for what went wrong unnoticed before. A muxer that is destroyed without it leaves an incomplete file.
    void finish(std::optional<MediaTime> end = std::nullopt);

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
