#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace vantry::test {

/// How much later than its flash each click of a movie is, in seconds: the camera turns white and the microphone clicks at the same
/// moments, a second apart. `pictures` is the stream with the flashes; the clicks are in the first sound, which has so many
/// channels. What was lost, or may lie outside the movie, is left out.
std::vector<double> clicksAfterFlashes(const std::filesystem::path& movie, const std::string& pictures, int channels);

} // namespace vantry::test
