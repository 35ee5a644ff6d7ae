#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

/// What an independent reader finds in a movie: everything here is asked of the ffprobe and ffmpeg programs. Streams are named
/// their way: "v:0" is the first picture track, "a:1" the second sound track.
namespace vantry::test {

struct ProbedFrame {
    double time = 0; ///< Seconds.
    bool isKeyframe = false;
    int luma = 0; ///< About the picture's mean, 0 to 255.
};

/// ffprobe's fields of a stream by name ("codec_name", "start_time", …), its disposition and tags among them. Empty when there is
/// none.
std::map<std::string, std::string> probeStream(const std::filesystem::path& movie, const std::string& stream);

/// Every picture, decoded, in the order it is shown.
std::vector<ProbedFrame> probeFrames(const std::filesystem::path& movie, const std::string& stream);

/// Overwrites what the file holds of a stream from a time on, in seconds, up to another: the beginning of each packet that begins
/// within, or without `bytes` all of it.
void damagePackets(
    const std::filesystem::path& movie, const std::string& stream, double from, double to, const std::string& bytes = {});

/// Every sample, decoded, interleaved when there are several channels.
std::vector<float> probeSound(const std::filesystem::path& movie, const std::string& stream);

/// When a stream ends, in seconds.
double probeEnd(const std::filesystem::path& movie, const std::string& stream);

/// The names of the boxes in the file, outermost first, as "moov", "moov/trak", …
std::vector<std::string> movieBoxes(const std::filesystem::path& movie);

/// The first sample that is louder than half of full scale, or -1.
int firstClick(const std::vector<float>& samples, int channels = 1);

} // namespace vantry::test
