#include "media/AudioReader.h"

#include "media/Decoder.h"

#include <array>
#include <utility>

namespace vantry {

namespace {

/// Decoders of sound need a little of what stands before the sound that is wanted.
constexpr MediaTime preroll = std::chrono::milliseconds(100);

/// A stamp that is off by less continues the sound before it.
constexpr MediaTime tolerance = std::chrono::milliseconds(1);

/// The decoded format that a resampler is made for.
struct Format {
    int sampleFormat = AV_SAMPLE_FMT_NONE;
    int sampleRate = 0;
    int channels = 0;

    bool operator==(const Format&) const = default;
};

Format formatOf(const AVFrame& frame)
{
    return { frame.format, frame.sample_rate, frame.ch_layout.nb_channels };
}

libav::ResamplerPtr makeResampler(const AVFrame& frame, int channels, const std::string& complaint)
{
    auto input = frame.ch_layout; // Borrowed; the library's signature wants it writable.
    AVChannelLayout output{};
    av_channel_layout_default(&output, channels);
    SwrContext* resampler = nullptr;
    libav::check(swr_alloc_set_opts2(&resampler, &output, AV_SAMPLE_FMT_FLT, sampleRate, &input,
                     static_cast<AVSampleFormat>(frame.format), frame.sample_rate, 0, nullptr),
        complaint);
    libav::ResamplerPtr owned(resampler);
    if (frame.ch_layout.nb_channels == 1) {
        // One channel sounds from all of them as loud as it is; the library's own matrix takes 3 dB away.
        const std::vector<double> unity(static_cast<std::size_t>(channels), 1.0);
        libav::check(swr_set_matrix(resampler, unity.data(), 1), complaint);
    }
    libav::check(swr_init(resampler), complaint);
    return owned;
}

} // namespace

struct AudioReader::State {
    TimedSound resample(const AVFrame* frame);
    void prepare(const AVFrame& frame);

    Decoder decoder;
    int channels = 1;
    MediaTime from{}; ///< Sound that ends before it is not given out.
    Format format{};
    libav::ResamplerPtr resampler{};
    std::optional<MediaTime> following{}; ///< Where the next sound begins if it has no gap before it.
};

namespace {

/// Cuts off what lies before `start`.
void trim(TimedSound& sound, MediaTime start)
{
    if (sound.time >= start)
        return;
    const auto excess = std::min(std::chrono::ceil<SampleCount>(start - sound.time), sound.sound.length());
    auto& samples = sound.sound.samples;
    samples.erase(samples.begin(), samples.begin() + excess.count() * sound.sound.channels);
    sound.time += excess;
}

} // namespace

AudioReader::AudioReader(const std::filesystem::path& movie, int track, int channels, DamageSink onDamage)
    : m_state(new State{
        .decoder = { movie, track, { .media = TrackMedia::Audio, .onDamage = std::move(onDamage) } }, .channels = channels })
{
}

AudioReader::~AudioReader() = default;

void AudioReader::seek(MediaTime time)
{
    m_state->decoder.seek(time - preroll);
    m_state->from = std::max(time, MediaTime(0));
    m_state->resampler.reset();
    m_state->following.reset();
}

std::optional<TimedSound> AudioReader::next()
{
    for (;;) {
        const auto frame = m_state->decoder.next();
        if (!frame && !m_state->resampler)
            return std::nullopt;
        auto sound = m_state->resample(frame.get());
        if (!frame)
            m_state->resampler.reset();
        trim(sound, MediaTime(0));
        if (sound.sound.frames() > 0 && sound.time + sound.sound.length() > m_state->from)
            return sound;
    }
}

void AudioReader::State::prepare(const AVFrame& frame)
{
    if (!resampler || format != formatOf(frame)) {
        resampler = makeResampler(frame, channels, decoder.complaint());
        format = formatOf(frame);
        following.reset();
    }
    const auto time = decoder.time(frame) - MediaTime(swr_get_delay(resampler.get(), MediaTime::period::den));
    if (!following || std::chrono::abs(time - *following) > tolerance)
        following = time;
}

/// Without a frame: what the resampler still holds.
TimedSound AudioReader::State::resample(const AVFrame* frame)
{
    if (frame)
        prepare(*frame);
    const int room = libav::check(swr_get_out_samples(resampler.get(), frame ? frame->nb_samples : 0), decoder.complaint());
    TimedSound result{ .sound = { .channels = channels, .samples = std::vector<float>(static_cast<std::size_t>(room) * channels) },
        .time = *following };
    std::array<std::uint8_t*, 1> output{ reinterpret_cast<std::uint8_t*>(result.sound.samples.data()) };
    const auto** input = frame ? const_cast<const std::uint8_t**>(frame->extended_data) : nullptr;
    const int made =
        libav::check(swr_convert(resampler.get(), output.data(), room, input, frame ? frame->nb_samples : 0), decoder.complaint());
    result.sound.samples.resize(static_cast<std::size_t>(made) * channels);
    *following += result.sound.length();
    return result;
}

} // namespace vantry
