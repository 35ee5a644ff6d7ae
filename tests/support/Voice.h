#pragma once

#include <string>
#include <vector>

namespace vantry::test {

/// One channel at `sampleRate` in which a synthetic voice ("slt", "rms", "awb") says the text.
std::vector<float> spoken(const std::string& text, const std::string& voice = "slt");

/// Silence.
std::vector<float> quiet(double seconds);

/// One after the other.
std::vector<float> joined(const std::vector<std::vector<float>>& sounds);

} // namespace vantry::test
