#include "support/TestMovie.h"

#include "capture/ClipWriter.h"
#include "media/MovieSalvage.h"
#include "support/FinishedClip.h"

#include <cmath>
#include <numbers>
#include <stdexcept>
#include <thread>

namespace vantry::test {

namespace {

constexpr HostTime start(std::chrono::nanoseconds(1'234'567'890'123));

struct Shades {
    std::uint8_t background;
    std::uint8_t bar;
    std::uint8_t cb;
    std::uint8_t cr;
};
constexpr Shades screenShades{ 45, 90, 120, 136 };
constexpr Shades cameraShades{ 60, 110, 110, 160 };

Picture barPicture(PictureSize size, Shades shades, int number)
{
    PictureBuffer buffer(size.width, size.height);
    buffer.fill(shades.background, shades.cb, shades.cr);
    const auto luma = buffer.plane(PlaneY);
    for (int y = 0; y < luma.height; ++y)
        for (int x = 0; x < luma.width / 16; ++x)
            luma.row(y)[(4 * number + x) % luma.width] = shades.bar;
    return std::move(buffer).share();
}

Picture flashPicture(PictureSize size)
{
    PictureBuffer buffer(size.width, size.height);
    buffer.fill(225, 128, 128);
    return std::move(buffer).share();
}

class Director {
public:
    Director(ClipWriter& writer, const TestMovie& movie)
        : m_writer(writer)
        , m_movie(movie)
    {
    }

    /// Everything that happens within the frame.
    void play(int frame)
    {
        show(TrackKind::screen, m_movie.screen, screenShades, frame);
        if (m_movie.camera)
            show(TrackKind::camera, *m_movie.camera, cameraShades, frame);
        if (m_movie.audio)
            sound(TrackKind::audio, 1, 440, frame);
        if (m_movie.system)
            sound(TrackKind::system, 2, 660, frame);
    }

private:
    void wait(TrackKind kind) const
    {
        while (!m_writer.isReady(kind))
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }

    bool isFlash(int frame) const { return m_movie.flash && std::lround(*m_movie.flash * framesPerSecond) == frame; }

    void show(TrackKind kind, PictureSize size, Shades shades, int frame)
    {
        wait(kind);
        const auto time = start + std::chrono::duration_cast<HostDuration>(frame * frameDuration);
        if (isFlash(frame))
            m_writer.append(PictureSample{ flashPicture(size), time }, kind);
        else
            m_writer.append(PictureSample{ barPicture(size, shades, frame), time }, kind);
    }

    void sound(TrackKind kind, int channels, double pitch, int frame)
    {
        wait(kind);
        constexpr int frames = sampleRate / framesPerSecond;
        const int first = frame * frames;
        Sound piece{ .channels = channels, .samples = {} };
        for (int i = first; i < first + frames; ++i) {
            const bool isVoice = kind == TrackKind::audio && !m_movie.voice.empty();
            piece.samples.insert(piece.samples.end(), static_cast<std::size_t>(channels), isVoice ? voice(i) : tone(i, pitch));
        }
        m_writer.append(SoundSample{ std::move(piece), start + std::chrono::round<HostDuration>(SampleCount(first)) }, kind);
    }

    float tone(int i, double pitch) const
    {
        const auto click = m_movie.click ? std::lround(*m_movie.click * sampleRate) : -100;
        const double value =
            i >= click && i < click + 8 ? 0.9 : m_movie.tone * std::sin(i * pitch * 2 * std::numbers::pi / sampleRate);
        return static_cast<float>(value);
    }

    float voice(int i) const
    {
        const auto index = static_cast<std::size_t>(i);
        return index < m_movie.voice.size() ? m_movie.voice[index] : 0;
    }

    ClipWriter& m_writer;
    const TestMovie& m_movie;
};

} // namespace

void writeTestMovie(const std::filesystem::path& file, const TestMovie& movie)
{
    ClipWriter writer(
        file, { .screen = movie.screen, .camera = movie.camera, .audio = movie.audio, .system = movie.system }, start);
    Director director(writer, movie);
    for (int frame = 0; frame < movie.duration * framesPerSecond; ++frame)
        director.play(frame);
    const auto end = start + std::chrono::round<HostDuration>(std::chrono::duration<double>(movie.duration));
    const auto outcome = finishedClip(writer, end);
    if (!outcome.duration)
        throw std::runtime_error(outcome.problem);
    forgetJournal(file);
}

} // namespace vantry::test
