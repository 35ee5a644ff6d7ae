// testmicrophone: a microphone that hears a steady tone of 440 Hz at a quarter of full scale, mono, 48 kHz. Its phase follows the
// samples that were asked for: a consumer that loses none sees no step.

#include "desktop/PipeWireLoop.h"

#include <array>
#include <cmath>
#include <csignal>
#include <iostream>
#include <numbers>

#include <spa/param/audio/format-utils.h>

namespace vantry {

class TestMicrophone {
public:
    TestMicrophone();
    void run() { m_loop.run(); }

private:
    void process();

    static constexpr int sampleRate = 48000;
    static constexpr double frequency = 440;
    static constexpr double amplitude = 0.25;

    PipeWireLoop m_loop;
    StreamPointer m_stream;
    double m_phase = 0;
};

TestMicrophone::TestMicrophone()
{
    static const pw_stream_events events = {
        .version = PW_VERSION_STREAM_EVENTS,
        .state_changed =
            [](void* self, pw_stream_state, pw_stream_state state, const char*) {
                if (state == PW_STREAM_STATE_ERROR || state == PW_STREAM_STATE_UNCONNECTED)
                    static_cast<TestMicrophone*>(self)->m_loop.quit();
            },
        .process = [](void* self) { static_cast<TestMicrophone*>(self)->process(); },
    };
    auto* properties = pw_properties_new(PW_KEY_MEDIA_CLASS, "Audio/Source", PW_KEY_NODE_NAME, "test-microphone",
        PW_KEY_NODE_DESCRIPTION, "Test microphone", nullptr);
    m_stream.reset(pw_stream_new_simple(m_loop.loop(), "test-microphone", properties, &events, this));

    std::array<std::byte, 1024> buffer;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(buffer.data(), buffer.size());
    spa_audio_info_raw format = {
        .format = SPA_AUDIO_FORMAT_F32, .rate = sampleRate, .channels = 1, .position = { SPA_AUDIO_CHANNEL_MONO }
    };
    const spa_pod* parameters[] = { spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format) };
    if (pw_stream_connect(m_stream.get(), PW_DIRECTION_OUTPUT, PW_ID_ANY, PW_STREAM_FLAG_MAP_BUFFERS, parameters, 1) < 0)
        throw std::runtime_error("No connection to the media server.");
}

void TestMicrophone::process()
{
    pw_buffer* buffer = pw_stream_dequeue_buffer(m_stream.get());
    if (!buffer)
        return;
    spa_data& data = buffer->buffer->datas[0];
    auto* samples = static_cast<float*>(data.data);
    uint64_t count = data.maxsize / sizeof(float);
    if (buffer->requested)
        count = std::min(count, buffer->requested);
    for (uint64_t i = 0; i < count; ++i) {
        samples[i] = static_cast<float>(amplitude * std::sin(m_phase));
        m_phase = std::fmod(m_phase + 2 * std::numbers::pi * frequency / sampleRate, 2 * std::numbers::pi);
    }
    data.chunk->offset = 0;
    data.chunk->stride = sizeof(float);
    data.chunk->size = static_cast<uint32_t>(count * sizeof(float));
    pw_stream_queue_buffer(m_stream.get(), buffer);
}

} // namespace vantry

int main()
{
    try {
        vantry::TestMicrophone().run();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
