#pragma once

#include "media/Damage.h"
#include "media/Sound.h"
#include "media/TrackInfo.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace vantry {

struct TimedSound {
    Sound sound;
    MediaTime time{}; ///< Of its first sample.
};

/// Reads one audio track as floats at `sampleRate`, with as many channels as asked for. Encoder priming is cut off, damage left
/// out. One thread at a time.
class AudioReader {
public:
    /// Throws AppError when the movie cannot be opened or has no such audio track.
    AudioReader(const std::filesystem::path& movie, int track, int channels, DamageSink onDamage = {});
    ~AudioReader();

    /// The next call of `next` gives the sound that holds `time`, or the first after it.
    void seek(MediaTime time);

    /// Nothing at the end of the track. Throws AppError.
    std::optional<TimedSound> next();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace vantry
