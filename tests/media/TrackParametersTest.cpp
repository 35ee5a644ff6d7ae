#include "media/TrackParameters.h"

#include "media/AudioEncoder.h"
#include "media/VideoEncoder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <span>

namespace vantry {

namespace {

using libav::ParametersPtr;

ParametersPtr parametersOf(const AVCodecContext& encoder)
{
    auto parameters = libav::makeParameters();
    libav::check(avcodec_parameters_from_context(parameters.get(), &encoder), "parameters");
    parameters->sample_aspect_ratio = { 4, 3 };
    parameters->codec_tag = MKTAG('t', 'e', 's', 't');
    return parameters;
}

std::string extraData(const AVCodecParameters& parameters)
{
    const std::span bytes(parameters.extradata, static_cast<std::size_t>(parameters.extradata_size));
    return { bytes.begin(), bytes.end() };
}

/// Of every field, those of a newer library too, but for what points elsewhere and the channels that the library has given up.
std::string values(AVCodecParameters parameters)
{
    parameters.extradata = nullptr;
    constexpr auto end = offsetof(AVCodecParameters, video_delay) + sizeof parameters.video_delay;
    constexpr auto next = offsetof(AVCodecParameters, sample_rate);
    const std::string bytes(reinterpret_cast<const char*>(&parameters), sizeof parameters);
    return bytes.substr(0, end) + bytes.substr(next);
}

void expectKept(const AVCodecContext& encoder)
{
    const auto before = parametersOf(encoder);
    const auto bytes = libav::packed(*before);
    const auto after = libav::unpacked(bytes);
    ASSERT_TRUE(after);
    EXPECT_EQ(extraData(*after), extraData(*before));
    EXPECT_NE(after->extradata, before->extradata);
    EXPECT_EQ(values(*after), values(*before));
    EXPECT_FALSE(libav::unpacked(std::string_view(bytes).substr(0, bytes.size() - extraData(*before).size() - 1)));
}

} // namespace

TEST(TrackParameters, keepWhatEveryEncoderSays)
{
    for (const auto codec : { VideoCodec::H264, VideoCodec::Hevc })
        expectKept(
            VideoEncoder({ .codec = codec, .width = 320, .height = 180, .bitRate = 1'000'000, .bFrames = 2, .preset = "ultrafast" })
                .context());
    for (const int channels : { 1, 2 })
        expectKept(AudioEncoder({ .channels = channels, .bitRate = 128'000 }).context());
}

TEST(TrackParameters, areNoneWhereAValueDoesNotFit)
{
    const AudioEncoder encoder({ .channels = 2, .bitRate = 128'000 });
    auto bytes = libav::packed(*parametersOf(encoder.context()));
    constexpr std::size_t format = 3 * sizeof(std::int64_t);
    bytes[format + 5] = 1; // More than four bytes hold.
    EXPECT_FALSE(libav::unpacked(bytes));
    EXPECT_FALSE(libav::unpacked(""));
}

} // namespace vantry
