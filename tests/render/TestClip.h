#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>

namespace vantry::test {

/// What a clip file of a test holds. Pictures are plain greys of 320x180, 30 a second; a function that is missing is a track that
/// is missing.
struct TestClip {
    int frames = 30; ///< The clip's length.
    std::function<std::uint8_t(int frame)> screen = [](int) { return 100; };
    std::function<std::uint8_t(int frame)> camera{};
    int cameraStart = 0; ///< The camera's first frame.
    int cameraEnd = 1'000'000; ///< The frame after its last.
    std::function<float(int sample)> microphone{}; ///< Mono.
    std::function<float(int sample)> system{}; ///< Both channels alike.
};

/// Writes it as the recorder does.
void writeClip(const std::filesystem::path& file, const TestClip& clip);

} // namespace vantry::test
