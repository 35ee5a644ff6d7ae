#include "platform/SoundOutput.h"

#include "platform/PipeWireLoop.h"
#include "support/PumpUntil.h"
#include "support/Speakers.h"
#include "support/SpoiledMemory.h"

#include <cmath>
#include <random>
#include <thread>

namespace vantry {

namespace {

using namespace std::chrono_literals;
using test::pumpUntil;

class SoundOutputTest : public test::EventLoopTest {
protected:
    static void fail(const AppError& error) { ADD_FAILURE() << error.what(); }

    /// Silence with one loud sample.
    static std::vector<float> click(std::size_t before, std::size_t after)
    {
        std::vector<float> samples((before + after) * 2, 0.0f);
        samples[2 * before] = samples[2 * before + 1] = 0.9f;
        return samples;
    }

    PipeWireLoop m_loop{ "test.sound" };
    const test::Speakers m_speakers;
};

} // namespace

TEST_F(SoundOutputTest, aSampleIsHeardWhenItSays)
{
    SoundOutput output(m_loop, fail);
    ASSERT_TRUE(pumpUntil([&] { return m_speakers.heard() > 100ms; }));
    EXPECT_FALSE(output.heardAt(HostClock::now())) << "it rests";
    output.start();
    constexpr std::int64_t at = 20'000;
    ASSERT_EQ(output.write(click(at, 20'000)), 40'000);
    EXPECT_LT(output.write(click(0, 40'000)), 40'000) << "it takes a second's";
    ASSERT_TRUE(pumpUntil([&] { return !m_speakers.clicks().empty(); }));
    const auto heard = output.heardAt(m_speakers.clicks().front());
    ASSERT_TRUE(heard);
    EXPECT_NEAR(static_cast<double>(*heard), at, 480) << "10 ms";
    ASSERT_TRUE(pumpUntil([&] { return output.reached() == output.written(); }));
    EXPECT_TRUE(output.heardAt(HostClock::now())) << "silence goes on";
    output.stop();
    EXPECT_TRUE(pumpUntil([&] { return !output.heardAt(HostClock::now()); }));
}

TEST_F(SoundOutputTest, whatIsDiscardedIsNotHeard)
{
    SoundOutput output(m_loop, fail);
    output.write(click(1000, 20'000));
    output.discard();
    const auto first = output.written();
    output.write(click(10'000, 10'000));
    output.start();
    ASSERT_TRUE(pumpUntil([&] { return output.reached() == output.written() && m_speakers.heard() > 1s; }));
    const auto clicks = m_speakers.clicks();
    ASSERT_EQ(clicks.size(), 1u);
    EXPECT_NEAR(static_cast<double>(output.heardAt(clicks.front()).value_or(0)), static_cast<double>(first + 10'000), 480);
}

/// While an output is closed, the server goes on telling it to begin or to rest.
TEST_F(SoundOutputTest, opensAndClosesAtAnyMoment)
{
    const test::SpoiledMemory spoiled;
    std::mt19937 random(1);
    std::uniform_int_distribution<> microseconds(0, 2000);
    for (int i = 0; i < 200; ++i) {
        SoundOutput output(m_loop, fail);
        output.start();
        EXPECT_TRUE(i % 4 > 0 || pumpUntil([&] { return output.heardAt(HostClock::now()); }));
        output.stop();
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
    }
    EXPECT_TRUE(m_loop.awaitServer());
}

} // namespace vantry
