#include "support/Voice.h"

#include "media/Sound.h"
#include "support/Command.h"
#include "support/TemporaryFolder.h"

#include <cstring>

namespace vantry::test {

std::vector<float> spoken(const std::string& text, const std::string& voice)
{
    const TemporaryFolder folder;
    const std::string file = folder / "voice.wav";
    runCommand("flite -voice " + voice + " -t '" + text + "' -o " + file);
    const std::string bytes = runCommand("ffmpeg -v error -i " + file + " -ac 1 -ar " + std::to_string(sampleRate) + " -f f32le -");
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}

std::vector<float> quiet(double seconds)
{
    return std::vector<float>(static_cast<std::size_t>(seconds * sampleRate));
}

std::vector<float> joined(const std::vector<std::vector<float>>& sounds)
{
    std::vector<float> all;
    for (const auto& sound : sounds)
        all.insert(all.end(), sound.begin(), sound.end());
    return all;
}

} // namespace vantry::test
