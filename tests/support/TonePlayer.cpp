#include "support/TonePlayer.h"

#include <cmath>
#include <cstdint>
#include <fstream>
#include <numbers>

namespace vantry::test {

namespace {

constexpr int rate = 48000;
constexpr int length = 30 * rate;

template <typename Integer>
void put(std::ostream& stream, Integer value)
{
    stream.write(reinterpret_cast<const char*>(&value), sizeof value);
}

void writeTones(const std::filesystem::path& file, const std::vector<double>& pitches)
{
    const auto channels = static_cast<std::uint16_t>(pitches.size());
    const auto frame = static_cast<std::uint16_t>(channels * sizeof(std::int16_t));
    const std::uint32_t bytes = length * frame;
    std::ofstream stream(file, std::ios::binary);
    stream << "RIFF";
    put<std::uint32_t>(stream, 36 + bytes);
    stream << "WAVEfmt ";
    put<std::uint32_t>(stream, 16);
    put<std::uint16_t>(stream, 1);
    put<std::uint16_t>(stream, channels);
    put<std::uint32_t>(stream, rate);
    put<std::uint32_t>(stream, rate * frame);
    put<std::uint16_t>(stream, frame);
    put<std::uint16_t>(stream, 16);
    stream << "data";
    put<std::uint32_t>(stream, bytes);
    for (int i = 0; i < length; ++i)
        for (const double pitch : pitches)
            put<std::int16_t>(stream,
                static_cast<std::int16_t>(
                    std::lround(TonePlayer::amplitude * INT16_MAX * std::sin(2 * std::numbers::pi * pitch * i / rate))));
}

} // namespace

TonePlayer::TonePlayer(Server server, const std::vector<double>& pitches)
{
    const auto file = m_folder.path() / "tones.wav";
    writeTones(file, pitches);
    const std::vector<std::string> pulse{ "ffmpeg", "-nostdin", "-loglevel", "error", "-i", file, "-f", "pulse", "tones" };
    // Its channels come as they are, not as the speakers have them.
    const std::vector<std::string> pipeWire{ "pw-cat", "-p", "-P", "{ stream.dont-remix = true }", file };
    m_program.emplace(server == Server::PipeWire ? pipeWire : pulse);
}

} // namespace vantry::test
