// testmicrophone [NAME [DESCRIPTION [clicks]]]
//
// A microphone that hears a steady tone of 440 Hz at a quarter of full scale, mono, 48 kHz. Its phase follows the samples that were
// asked for: a consumer that loses none sees no step. With `clicks` it hears instead one sample of full scale at each whole second
// of CLOCK_MONOTONIC, and apart from that nothing.

#include "desktop/PipeWireLoop.h"

#include <array>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <iostream>
#include <numbers>
#include <string>

#include <spa/param/audio/format-utils.h>

namespace vantry {

class TestMicrophone {
public:
    TestMicrophone(const char* name, const char* description, bool hearsClicks);
    void run() { m_loop.run(); }

private:
    void process();
    void writeTone(float* to, uint64_t count);
    void writeClicks(float* to, uint64_t count);

    static constexpr int sampleRate = 48000;
    static constexpr double frequency = 440;
    static constexpr double amplitude = 0.25;

    PipeWireLoop m_loop;
    StreamPointer m_stream;
    const bool m_hearsClicks;
    double m_phase = 0;
    int64_t m_written = 0; // the time of the sample after the last one, as far as clicks are concerned
};

TestMicrophone::TestMicrophone(const char* name, const char* description, bool hearsClicks)
    : m_hearsClicks(hearsClicks)
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
    // A real microphone has a clock of its own. This one has the server's; otherwise it would take that of a camera that is looked
    // through, and bring a cycle of sound with each of its frames.
    auto* properties = pw_properties_new(PW_KEY_MEDIA_CLASS, "Audio/Source", PW_KEY_NODE_GROUP, "pipewire.dummy", PW_KEY_NODE_NAME,
        name, PW_KEY_NODE_DESCRIPTION, description, nullptr);
    m_stream.reset(pw_stream_new_simple(m_loop.loop(), name, properties, &events, this));

    std::array<std::byte, 1024> buffer;
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(buffer.data(), buffer.size());
    spa_audio_info_raw format = {
        .format = SPA_AUDIO_FORMAT_F32, .rate = sampleRate, .channels = 1, .position = { SPA_AUDIO_CHANNEL_MONO }
    };
    const spa_pod* parameters[] = { spa_format_audio_raw_build(&builder, SPA_PARAM_EnumFormat, &format) };
    // On the cycle's own thread: elsewhere the samples would come a cycle late.
    const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_RT_PROCESS);
    if (pw_stream_connect(m_stream.get(), PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, parameters, 1) < 0)
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
    if (m_hearsClicks)
        writeClicks(samples, count);
    else
        writeTone(samples, count);
    data.chunk->offset = 0;
    data.chunk->stride = sizeof(float);
    data.chunk->size = static_cast<uint32_t>(count * sizeof(float));
    pw_stream_queue_buffer(m_stream.get(), buffer);
}

void TestMicrophone::writeTone(float* to, uint64_t count)
{
    for (uint64_t i = 0; i < count; ++i) {
        to[i] = static_cast<float>(amplitude * std::sin(m_phase));
        m_phase = std::fmod(m_phase + 2 * std::numbers::pi * frequency / sampleRate, 2 * std::numbers::pi);
    }
}

/// A cycle brings the sound from its own time on. What happened in a cycle that the server left out was not heard.
void TestMicrophone::writeClicks(float* to, uint64_t count)
{
    constexpr int64_t second = 1000000000;
    pw_time time{};
    pw_stream_get_time_n(m_stream.get(), &time, sizeof time);
    const auto timeOf = [&](uint64_t sample) { return time.now + static_cast<int64_t>(sample) * second / sampleRate; };
    const bool follows = std::abs(time.now - m_written) < second / 1000;
    const int64_t before = follows ? m_written : time.now;
    for (uint64_t i = 0; i < count; ++i)
        to[i] = timeOf(i) / second != (i == 0 ? before : timeOf(i - 1)) / second ? 1.0F : 0.0F;
    m_written = timeOf(count - 1);
}

} // namespace vantry

int main(int count, char** arguments)
{
    const auto argument = [&](int index, const char* otherwise) { return index < count ? arguments[index] : otherwise; };
    const char* name = argument(1, "test-microphone");
    try {
        vantry::TestMicrophone(name, argument(2, count > 1 ? name : "Test microphone"), argument(3, "") == std::string("clicks"))
            .run();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
