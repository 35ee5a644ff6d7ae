#pragma once

#include "media/PictureSize.h"

#include <filesystem>
#include <optional>
#include <vector>

namespace vantry::test {

/// A clip as the recorder writes it, with content whose times are known.
struct TestMovie {
    double duration = 2; ///< Seconds.
    PictureSize screen{ 640, 360 };
    std::optional<PictureSize> camera{};
    bool audio = false; ///< The microphone.
    bool system = false;
    std::optional<double>
        flash{}; ///< All picture tracks are bright for one frame; a multiple of 1/30 s. Otherwise they are dark with a moving bar.
    std::optional<double> click{}; ///< Both sounds click: eight samples close to full scale in an otherwise quiet tone.
    std::vector<float> voice{}; ///< The microphone hears this instead, and then nothing.
    double tone = 0.1; ///< Loudness of the tone: 440 Hz in the microphone, 660 Hz in the system sound.
};

/// Writes it with `ClipWriter`, waiting for the encoders instead of dropping. 30 pictures a second in both picture tracks. Throws
/// std::runtime_error when it cannot be completed.
void writeTestMovie(const std::filesystem::path& file, const TestMovie& movie);

/// The mean luma of a dark picture stays below this, that of a flash above.
inline constexpr int flashLuma = 130;

} // namespace vantry::test
