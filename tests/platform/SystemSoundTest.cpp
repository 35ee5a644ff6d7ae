#include "platform/SystemSound.h"

#include "platform/PipeWireLoop.h"
#include "platform/SoundOutput.h"
#include "support/Ear.h"
#include "support/OtherSpeakers.h"
#include "support/PumpUntil.h"
#include "support/Speakers.h"
#include "support/TonePlayer.h"

#include <array>
#include <optional>
#include <unistd.h>

namespace vantry {

namespace {

using namespace std::chrono_literals;
using test::Ear;
using test::pumpUntil;
using test::TonePlayer;
using Server = TonePlayer::Server;

constexpr double loud = TonePlayer::amplitude * 0.9;
constexpr double inaudible = TonePlayer::amplitude / 100;

SoundStream::Handlers handlersOf(Ear& ear)
{
    return { .onSound = [&ear](std::span<const float> samples, HostTime taken) { ear.hear(samples, taken); },
        .onFailed = [](const AppError& error) { ADD_FAILURE() << error.what(); } };
}

class SystemSoundTest : public test::EventLoopTest {
protected:
    PipeWireLoop loop{ "test.sound" };
    Ear ear;
};

} // namespace

TEST_F(SystemSoundTest, hearsProgramsThatBeginAndEndMeanwhile)
{
    const SystemSound sound(loop, handlersOf(ear));
    std::optional<TonePlayer> stereo;
    stereo.emplace(Server::PipeWire, std::vector<double>{ 700, 1100 });
    ASSERT_TRUE(pumpUntil([&] { return ear.latest(0, 700) > loud && ear.latest(1, 1100) > loud; }));
    EXPECT_LT(ear.latest(0, 1100), inaudible);
    EXPECT_LT(ear.latest(1, 700), inaudible);

    const TonePlayer mono(Server::Pulse, { 500 });
    EXPECT_TRUE(pumpUntil([&] { return ear.latest(0, 500) > loud && ear.latest(1, 500) > loud; }));
    EXPECT_TRUE(pumpUntil([&] { return ear.latest(0, 700) > loud; })) << "both at once";
    stereo.reset();
    EXPECT_TRUE(pumpUntil([&] { return ear.latest(0, 700) < inaudible && ear.latest(1, 1100) < inaudible; }));
    EXPECT_TRUE(pumpUntil([&] { return ear.latest(0, 500) > loud; }));
    EXPECT_LT(ear.shortestDelay(), 10ms);
}

TEST_F(SystemSoundTest, hearsEveryChannelOnItsSide)
{
    const SystemSound sound(loop, handlersOf(ear));
    // In the order of the file's format: left, right, centre, deep effects, behind left and right.
    const TonePlayer surround(Server::PipeWire, { 400, 500, 600, 200, 800, 900 });
    ASSERT_TRUE(pumpUntil([&] { return ear.latest(0, 400) > loud && ear.latest(0, 600) > loud && ear.latest(0, 800) > loud; }));
    EXPECT_TRUE(pumpUntil([&] { return ear.latest(1, 500) > loud && ear.latest(1, 600) > loud && ear.latest(1, 900) > loud; }));
    EXPECT_LT(ear.latest(0, 500) + ear.latest(0, 900) + ear.latest(0, 200), inaudible);
    EXPECT_LT(ear.latest(1, 400) + ear.latest(1, 800) + ear.latest(1, 200), inaudible);
}

TEST_F(SystemSoundTest, doesNotHearThisProcess)
{
    const test::Speakers speakers;
    const SystemSound sound(loop, handlersOf(ear));
    SoundOutput own(loop, [](const AppError& error) { ADD_FAILURE() << error.what(); });
    own.start();
    const auto playOn = [&] {
        std::array<float, 2> sample{};
        do
            sample.fill(static_cast<float>(
                TonePlayer::amplitude * std::sin(2 * std::numbers::pi * 1500 * static_cast<double>(own.written()) / 48000)));
        while (own.write(sample) != 0);
    };
    // As a library in this process would play through the Pulse server.
    setenv("PULSE_PROP", ("application.process.id=" + std::to_string(getpid())).c_str(), 1);
    const TonePlayer ownByPulse(Server::Pulse, { 2100 });
    unsetenv("PULSE_PROP");
    const TonePlayer other(Server::Pulse, { 700, 700 });
    ASSERT_TRUE(pumpUntil([&] {
        playOn();
        return speakers.latest(1500) > loud && speakers.latest(2100) > loud && ear.latest(0, 700) > loud;
    }));
    EXPECT_LT(ear.latest(0, 2100), inaudible);
    EXPECT_LT(ear.latest(0, 1500), inaudible);
    EXPECT_LT(ear.latest(1, 1500), inaudible);
}

TEST_F(SystemSoundTest, hearsProgramsWhateverTheDefaultOutputIs)
{
    const SystemSound sound(loop, handlersOf(ear));
    const TonePlayer first(Server::Pulse, { 700 });
    ASSERT_TRUE(pumpUntil([&] { return ear.latest(0, 700) > loud; }));
    {
        const test::OtherSpeakers other;
        const TonePlayer second(Server::PipeWire, { 1100 });
        EXPECT_TRUE(pumpUntil([&] { return ear.latest(0, 1100) > loud; }));
        EXPECT_TRUE(pumpUntil([&] { return ear.latest(0, 700) > loud; }));
    }
    EXPECT_TRUE(pumpUntil([&] { return ear.latest(0, 1100) < inaudible && ear.latest(0, 700) > loud; }));
}

} // namespace vantry
