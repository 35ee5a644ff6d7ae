#include "platform/MicrophoneStream.h"

#include "platform/MediaDevices.h"
#include "platform/PipeWireLoop.h"
#include "support/DeviceProgram.h"
#include "support/PumpUntil.h"

#include <gtest/gtest.h>

#include <cmath>
#include <mutex>
#include <optional>
#include <vector>

namespace vantry {

namespace {

using test::DeviceProgram;
using test::pumpUntil;
using test::uniqueName;
using namespace std::chrono_literals;

/// Listens and keeps what it hears, sample by sample with its time.
class Listener {
public:
    struct Heard {
        std::vector<float> samples;
        HostTime first;
        HostTime arrived;

        HostTime timeOf(std::size_t sample) const
        {
            return first + HostDuration(1s) * static_cast<std::int64_t>(sample) / MicrophoneStream::sampleRate;
        }
    };

    Listener(PipeWireLoop& loop, const std::string& microphone)
        : m_stream(std::in_place, loop, microphone,
            MicrophoneStream::Handlers{
                .onSound = [this](std::span<const float> samples, HostTime first) { add(samples, first); }, .onFailed = {} })
    {
    }

    std::vector<Heard> heard()
    {
        const std::lock_guard guard(m_mutex);
        return m_heard;
    }
    std::size_t sampleCount()
    {
        std::size_t count = 0;
        for (const auto& heard : heard())
            count += heard.samples.size();
        return count;
    }
    /// The times of all samples that are loud.
    std::vector<HostTime> clicks()
    {
        std::vector<HostTime> times;
        for (const auto& heard : heard())
            for (std::size_t i = 0; i < heard.samples.size(); ++i)
                if (heard.samples[i] > 0.5F)
                    times.push_back(heard.timeOf(i));
        return times;
    }

private:
    void add(std::span<const float> samples, HostTime first)
    {
        const std::lock_guard guard(m_mutex);
        m_heard.push_back({ { samples.begin(), samples.end() }, first, HostClock::now() });
    }

    std::mutex m_mutex;
    std::vector<Heard> m_heard;
    std::optional<MicrophoneStream> m_stream;
};

HostDuration distanceToSecond(HostTime time)
{
    const auto rest = time.time_since_epoch() % HostDuration(1s);
    return std::min(rest, HostDuration(1s) - rest);
}

class MicrophoneStreamTest : public test::EventLoopTest {
protected:
    PipeWireLoop m_loop{ "test.microphone" };
    MediaDevices m_devices{ m_loop };
};

} // namespace

TEST_F(MicrophoneStreamTest, hearsTheToneInTrueTime)
{
    Listener listener(m_loop, "test-microphone");
    ASSERT_TRUE(pumpUntil([&] { return listener.sampleCount() > 2 * MicrophoneStream::sampleRate; }));
    double power = 0;
    std::size_t samples = 0;
    const auto heard = listener.heard();
    for (std::size_t i = heard.size() / 2; i < heard.size(); ++i) {
        EXPECT_LE(heard[i].first, heard[i].arrived);
        EXPECT_LT(heard[i].arrived - heard[i].first, 500ms);
        EXPECT_GT(heard[i].first, heard[i - 1].first);
        for (float sample : heard[i].samples)
            power += sample * sample;
        samples += heard[i].samples.size();
    }
    EXPECT_NEAR(power / static_cast<double>(samples), 0.25 * 0.25 / 2, 0.002);
}

TEST_F(MicrophoneStreamTest, aClickIsStampedWithTheTimeAtWhichItWasHeard)
{
    const auto name = uniqueName("microphone");
    const DeviceProgram program("testmicrophone", { name, "Clicks", "clicks" });
    ASSERT_TRUE(pumpUntil([&] { return m_devices.list().hasMicrophone(name); }));
    Listener listener(m_loop, name);
    ASSERT_TRUE(pumpUntil([&] { return listener.clicks().size() >= 3; }));
    for (const auto click : listener.clicks())
        EXPECT_LT(distanceToSecond(click), 5ms);
}

} // namespace vantry
