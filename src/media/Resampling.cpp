#include "media/Resampling.h"

#include "media/Libav.h"
#include "media/Sound.h"

#include <array>

namespace vantry {

namespace {

constexpr auto complaint = "Cannot resample the sound";

libav::ResamplerPtr makeResampler(int rate)
{
    AVChannelLayout mono = AV_CHANNEL_LAYOUT_MONO;
    SwrContext* resampler = nullptr;
    libav::check(swr_alloc_set_opts2(&resampler, &mono, AV_SAMPLE_FMT_FLT, rate, &mono, AV_SAMPLE_FMT_FLT, sampleRate, 0, nullptr),
        complaint);
    libav::ResamplerPtr owned(resampler);
    libav::check(swr_init(resampler), complaint);
    return owned;
}

} // namespace

std::vector<float> resampled(std::span<const float> samples, int rate)
{
    const auto resampler = makeResampler(rate);
    const auto wanted = static_cast<int>(static_cast<std::int64_t>(samples.size()) * rate / sampleRate);
    std::vector<float> result(static_cast<std::size_t>(wanted));
    int made = 0;
    // In one piece, and then what the filter still holds.
    for (const auto piece : { samples, std::span<const float>() }) {
        std::array<std::uint8_t*, 1> output{ reinterpret_cast<std::uint8_t*>(result.data() + made) };
        std::array<const std::uint8_t*, 1> input{ reinterpret_cast<const std::uint8_t*>(piece.data()) };
        made += libav::check(swr_convert(resampler.get(), output.data(), wanted - made, piece.empty() ? nullptr : input.data(),
                                 static_cast<int>(piece.size())),
            complaint);
    }
    result.resize(static_cast<std::size_t>(made));
    return result;
}

} // namespace vantry
