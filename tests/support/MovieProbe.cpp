#include "support/MovieProbe.h"

#include "support/Command.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace vantry::test {

namespace {

std::string probe(const std::filesystem::path& movie, const std::string& stream, const std::string& options)
{
    return runCommand("ffprobe -v error -select_streams " + stream + " " + options + " 'file:" + movie.string() + "'");
}

std::string decoded(const std::filesystem::path& movie, const std::string& stream, const std::string& options)
{
    return runCommand("ffmpeg -v fatal -nostdin -i 'file:" + movie.string() + "' -map 0:" + stream + " " + options + " -");
}

std::uint32_t bigEndian(const char* bytes)
{
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i)
        value = value << 8 | static_cast<std::uint8_t>(bytes[i]);
    return value;
}

bool holdsBoxes(const std::string& name)
{
    return name == "moov" || name == "trak" || name == "edts" || name == "mdia" || name == "minf" || name == "stbl";
}

void collectBoxes(std::ifstream& file, std::uint64_t end, const std::string& parent, std::vector<std::string>& boxes)
{
    std::array<char, 16> header;
    for (auto at = static_cast<std::uint64_t>(file.tellg()); at + 8 <= end;) {
        file.seekg(static_cast<std::streamoff>(at));
        file.read(header.data(), header.size());
        file.clear();
        std::uint64_t size = bigEndian(header.data());
        const std::string name(header.data() + 4, 4);
        if (size == 1)
            size = std::uint64_t{ bigEndian(header.data() + 8) } << 32 | bigEndian(header.data() + 12);
        if (size < 8)
            return;
        boxes.push_back(parent + name);
        if (holdsBoxes(name)) {
            file.seekg(static_cast<std::streamoff>(at + 8));
            collectBoxes(file, at + size, parent + name + "/", boxes);
        }
        at += size;
    }
}

} // namespace

std::map<std::string, std::string> probeStream(const std::filesystem::path& movie, const std::string& stream)
{
    std::istringstream lines(probe(movie, stream, "-show_streams -of default=noprint_wrappers=1"));
    std::map<std::string, std::string> fields;
    for (std::string line; std::getline(lines, line);)
        if (const auto equals = line.find('='); equals != std::string::npos)
            fields[line.substr(0, equals)] = line.substr(equals + 1);
    return fields;
}

std::vector<ProbedFrame> probeFrames(const std::filesystem::path& movie, const std::string& stream)
{
    const auto lumas = decoded(movie, stream, "-vsync passthrough -vf scale=1:1:flags=area,format=gray -f rawvideo");
    std::istringstream lines(probe(movie, stream, "-show_entries frame=key_frame,best_effort_timestamp_time -of csv=p=0"));
    std::vector<ProbedFrame> frames;
    for (std::string line; std::getline(lines, line);) {
        ProbedFrame frame;
        int isKeyframe = 0;
        if (std::sscanf(line.c_str(), "%d,%lf", &isKeyframe, &frame.time) != 2)
            continue;
        frame.isKeyframe = isKeyframe != 0;
        frames.push_back(frame);
    }
    if (frames.size() != lumas.size())
        throw std::runtime_error("ffmpeg and ffprobe count differently");
    for (std::size_t i = 0; i < frames.size(); ++i)
        frames[i].luma = static_cast<std::uint8_t>(lumas[i]);
    return frames;
}

void damagePackets(const std::filesystem::path& movie, const std::string& stream, double from, double to, const std::string& bytes)
{
    std::istringstream lines(probe(movie, stream, "-v fatal -show_entries packet=pts_time,size,pos -of csv=p=0"));
    std::fstream file(movie, std::ios::in | std::ios::out | std::ios::binary);
    for (std::string line; std::getline(lines, line);) {
        double time = 0;
        unsigned long size = 0, position = 0;
        if (std::sscanf(line.c_str(), "%lf,%lu,%lu", &time, &size, &position) != 3 || time < from || time >= to)
            continue;
        file.seekp(static_cast<std::streamoff>(position));
        file << (bytes.empty() ? std::string(size, '\xff') : bytes.substr(0, size));
    }
}

std::vector<float> probeSound(const std::filesystem::path& movie, const std::string& stream)
{
    const auto bytes = decoded(movie, stream, "-f f32le");
    std::vector<float> samples(bytes.size() / sizeof(float));
    std::memcpy(samples.data(), bytes.data(), samples.size() * sizeof(float));
    return samples;
}

double probeEnd(const std::filesystem::path& movie, const std::string& stream)
{
    const auto fields = probeStream(movie, stream);
    return std::stod(fields.at("start_time")) + std::stod(fields.at("duration"));
}

std::vector<std::string> movieBoxes(const std::filesystem::path& movie)
{
    std::ifstream file(movie, std::ios::binary);
    std::vector<std::string> boxes;
    collectBoxes(file, std::filesystem::file_size(movie), "", boxes);
    return boxes;
}

int firstClick(const std::vector<float>& samples, int channels)
{
    for (std::size_t i = 0; i < samples.size(); ++i)
        if (std::abs(samples[i]) > 0.5f)
            return static_cast<int>(i) / channels;
    return -1;
}

} // namespace vantry::test
