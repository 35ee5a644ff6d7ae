#include "media/AudioEncoder.h"

#include "media/Encoding.h"

#include <cassert>

namespace vantry {

struct AudioEncoder::State {
    libav::CodecContextPtr context;
    std::vector<float> waiting; ///< Interleaved, less than a frame between calls.
    std::int64_t encoded = 0; ///< Samples that went into the encoder.

    std::size_t channels() const { return static_cast<std::size_t>(context->ch_layout.nb_channels); }
    void encodeFrame(const float* interleaved, std::size_t length, const PacketSink& sink);
};

void AudioEncoder::State::encodeFrame(const float* interleaved, std::size_t length, const PacketSink& sink)
{
    auto frame = libav::makeFrame();
    frame->format = context->sample_fmt;
    frame->sample_rate = context->sample_rate;
    frame->nb_samples = static_cast<int>(length);
    libav::check(av_channel_layout_copy(&frame->ch_layout, &context->ch_layout), "No memory for sound");
    libav::check(av_frame_get_buffer(frame.get(), 0), "No memory for sound");
    for (std::size_t channel = 0; channel < channels(); ++channel) {
        auto* plane = reinterpret_cast<float*>(frame->extended_data[channel]);
        for (std::size_t i = 0; i < length; ++i)
            plane[i] = interleaved[i * channels() + channel];
    }
    frame->pts = encoded;
    encoded += static_cast<std::int64_t>(length);
    libav::encode(*context, frame.get(), sink);
}

AudioEncoder::AudioEncoder(const AudioEncoderSettings& settings)
    : m_state(std::make_unique<State>())
{
    m_state->context = libav::makeEncoder("aac");
    auto& context = *m_state->context;
    av_channel_layout_default(&context.ch_layout, settings.channels);
    context.sample_fmt = AV_SAMPLE_FMT_FLTP;
    context.sample_rate = sampleRate;
    context.time_base = { 1, sampleRate };
    context.bit_rate = settings.bitRate;
    context.profile = FF_PROFILE_AAC_LOW;
    context.flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    libav::openEncoder(context);
}

AudioEncoder::~AudioEncoder() = default;

void AudioEncoder::encode(const Sound& sound, const PacketSink& sink)
{
    auto& state = *m_state;
    assert(static_cast<std::size_t>(sound.channels) == state.channels());
    state.waiting.insert(state.waiting.end(), sound.samples.begin(), sound.samples.end());
    const auto length = static_cast<std::size_t>(state.context->frame_size);
    const auto step = length * state.channels();
    std::size_t taken = 0;
    for (; state.waiting.size() - taken >= step; taken += step)
        state.encodeFrame(state.waiting.data() + taken, length, sink);
    state.waiting.erase(state.waiting.begin(), state.waiting.begin() + static_cast<std::ptrdiff_t>(taken));
}

void AudioEncoder::finish(const PacketSink& sink)
{
    auto& state = *m_state;
    if (!state.waiting.empty())
        state.encodeFrame(state.waiting.data(), state.waiting.size() / state.channels(), sink);
    state.waiting.clear();
    libav::encode(*state.context, nullptr, sink);
}

int AudioEncoder::priming() const
{
    return m_state->context->initial_padding;
}

const AVCodecContext& AudioEncoder::context() const
{
    return *m_state->context;
}

} // namespace vantry
