#pragma once

#include "base/BoundedQueue.h"
#include "media/AudioEncoder.h"
#include "media/Muxer.h"
#include "media/VideoEncoder.h"
#include "render/CompositionPlan.h"
#include "render/DamageLog.h"
#include "render/Exporter.h"
#include "render/FrameMaker.h"

#include <chrono>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

namespace vantry {

/// One running export: frames and sound are made on threads of their own, a few frames ahead of the one that is encoded. The first
/// error, or the wish to cancel, ends all of them.
class ExportRun {
public:
    /// Makes `file`. The options outlive the run. Throws AppError.
    ExportRun(const ExportOptions& options, CompositionPlan plan, const std::filesystem::path& file);

    /// Once. The calling thread encodes the pictures and writes the file. Throws AppError; an incomplete file is left then, and
    /// when it was cancelled.
    ExportResult run();

private:
    using SoundPackets = std::vector<Packet>; ///< The sound of one frame: none, one or two packets.

    // The stages.
    void encodeSound();
    void encodeAndWrite();

    void runStage(const std::function<void()>& stage);
    bool writeSound();
    void reportProgress(std::int64_t frame);

    const ExportOptions& m_options;
    const CompositionPlan m_plan;
    const std::int64_t m_frameCount;

    BoundedQueue<SoundPackets> m_sound; ///< Between the stages; closed when the export is given up.

    DamageLog m_damage;

    std::mutex m_errorMutex;
    std::exception_ptr m_error; ///< The first; guarded by the mutex.

    // Belongs to the sound stage.
    std::optional<AudioEncoder> m_soundEncoder; ///< None in a silent project.

    // Belongs to the exporting thread.
    FrameMaker m_frames{ "export", { .damage = &m_damage } };
    VideoEncoder m_encoder;
    Muxer m_muxer;
    int m_pictureTrack = -1;
    int m_soundTrack = -1;
    std::chrono::steady_clock::time_point m_lastProgress;
};

} // namespace vantry
