#pragma once

#include "media/AudioReader.h"
#include "render/CompositionPlan.h"
#include "render/DamageLog.h"

#include <memory>
#include <optional>
#include <vector>

namespace vantry {

/// The sound of one role of a composition from a position on, in stereo, each sample in its place; a single channel sounds from
/// both. One thread at a time.
class TrackSound {
public:
    static constexpr int channels = 2;

    /// Damage is noted where that is wanted; the log outlives the object.
    explicit TrackSound(std::vector<Segment> segments, SampleCount from = {}, DamageLog* damage = nullptr);

    /// Adds the next stretch, as long as `mix`, with its samples multiplied by `gain`. What has no sound, or is damaged, adds
    /// nothing. Throws AppError when a clip cannot be opened.
    void addTo(Sound& mix, float gain);

private:
    /// A piece of sound and where its first sample stands in the output.
    struct Piece {
        Sound sound;
        SampleCount start{};

        SampleCount end() const { return start + sound.length(); }
    };

    bool findPieceBefore(SampleCount end);
    std::optional<Piece> readPiece(const Segment& segment);

    const std::vector<Segment> m_segments;
    DamageLog* const m_damage;
    std::size_t m_current = 0;
    std::unique_ptr<AudioReader> m_reader; ///< Of the current segment.
    std::optional<Piece> m_piece; ///< Of the current segment; not used up.
    SampleCount m_position;
};

} // namespace vantry
