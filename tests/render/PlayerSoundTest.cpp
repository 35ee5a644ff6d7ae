#include "TestProject.h"
#include "media/Sound.h"
#include "platform/PipeWireLoop.h"
#include "platform/SystemSound.h"
#include "render/Player.h"
#include "support/Command.h"
#include "support/Ear.h"
#include "support/MediaServer.h"
#include "support/OtherSpeakers.h"
#include "support/PumpUntil.h"
#include "support/Speakers.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <numbers>
#include <random>

namespace vantry {

using namespace test;
using namespace std::chrono_literals;

namespace {

using State = Player::State;

constexpr int flashes = 3; // In a second.
constexpr int framesBetween = framesPerSecond / flashes;

std::uint8_t flash(int frame)
{
    return frame % framesBetween == framesBetween / 2 ? 220 : 40;
}

/// With every flash.
float click(int sample)
{
    const int between = sampleRate / flashes;
    const int since = sample % between - between / 2;
    return since >= 0 && since < 8 ? 0.9f : 0.0f;
}

float tone(int sample)
{
    return 0.25f * std::sin(static_cast<float>(sample % 48000) * 2 * std::numbers::pi_v<float> * 700 / 48000);
}

class PlayerSoundTest : public EventLoopTest {
protected:
    PlayerSoundTest() { m_content.project.layouts = { { 0, Layout::screen, Corner::bottomRight } }; }

    std::shared_ptr<const PlayerItem> item() const { return makePlayerItem(m_content.project, m_content.folder.path(), {}); }

    bool plays(Player& player, double to)
    {
        return pumpUntil([&] { return player.time() >= to; });
    }

    TestProject m_content;
};

/// When its picture becomes bright.
void watchFlashes(Player& player, std::vector<HostTime>& times)
{
    QObject::connect(&player, &Player::pictureChanged, &player, [&] {
        if (shade(player.picture()) > 130)
            times.push_back(HostClock::now());
    });
}

/// How many entries a folder of the system's view of this process has.
std::ptrdiff_t entries(const std::string& folder)
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/" + folder), {});
}

/// How far each of the times is from the nearest of the others, in the middle: on a busy machine a picture comes late now and then.
HostDuration middleDistance(const std::vector<HostTime>& times, const std::vector<HostTime>& others)
{
    std::vector<HostDuration> distances;
    for (const auto time : times) {
        auto nearest = HostDuration(1h);
        for (const auto other : others)
            nearest = std::min(nearest, std::chrono::abs(time - other));
        distances.push_back(nearest);
    }
    std::ranges::sort(distances);
    return distances.empty() ? HostDuration(1h) : distances[distances.size() / 2];
}

} // namespace

TEST_F(PlayerSoundTest, aClickIsHeardWithItsPicture)
{
    m_content.add({ .frames = 120, .screen = flash, .microphone = click }, 3.5);
    m_content.add({ .frames = 90, .screen = flash, .system = click }, 3);
    const Speakers speakers;
    ASSERT_TRUE(pumpUntil([&] { return speakers.heard() > 100ms; }));
    Player player;
    std::vector<HostTime> seen;
    watchFlashes(player, seen);
    player.setItem(item(), 0.21);
    player.play();
    ASSERT_TRUE(pumpUntil([&] { return player.state() == State::Paused; }));
    const auto heard = speakers.clicks();
    EXPECT_GE(seen.size(), 15u);
    EXPECT_LT(middleDistance(seen, heard), 40ms);
}

TEST_F(PlayerSoundTest, withoutSoundTimeGoesOnAndSoundThatComesBackJoinsIn)
{
    m_content.add({ .frames = 900, .screen = flash, .microphone = click }, 30);
    const Speakers speakers;
    Player player;
    std::vector<HostTime> seen;
    watchFlashes(player, seen);
    player.setItem(item(), 0);
    player.play();
    ASSERT_TRUE(pumpUntil([&] { return speakers.clicks().size() > 16; }));
    const auto link = [](const std::string& how) {
        for (const std::string channel : { "FL", "FR" })
            runCommand("pw-link " + how + " vantry.preview:output_" + channel + " test-sink:playback_" + channel);
    };
    link("-d");
    const double time = player.time();
    const auto heardBefore = speakers.clicks().size();
    ASSERT_TRUE(plays(player, time + 1.5));
    EXPECT_LT(speakers.clicks().size(), heardBefore + 16) << "two more at most";

    link("");
    const auto seenBefore = seen.size();
    ASSERT_TRUE(pumpUntil([&] { return seen.size() > seenBefore + 12; }));
    EXPECT_LT(
        middleDistance({ seen.begin() + static_cast<std::ptrdiff_t>(seenBefore) + 3, seen.end() - 1 }, speakers.clicks()), 40ms);
}

TEST_F(PlayerSoundTest, itsSoundIsHeardWhereItIsWantedAndLeftOutOfRecordings)
{
    m_content.add({ .frames = 900, .microphone = tone }, 30);
    const Speakers speakers;
    PipeWireLoop loop("test.sound");
    Ear recorded;
    const SystemSound others(loop,
        { .onSound = [&](std::span<const float> samples, HostTime taken) { recorded.hear(samples, taken); },
            .onFailed = [](const AppError& error) { ADD_FAILURE() << error.what(); } });
    Player player;
    player.setItem(item(), 0);
    {
        const OtherSpeakers other;
        player.play();
        ASSERT_TRUE(plays(player, 0.5));
    }
    EXPECT_TRUE(pumpUntil([&] { return speakers.latest(700) > 0.2; })) << "an output that goes away does not stop it";
    const auto before = recorded.heard();
    ASSERT_TRUE(pumpUntil([&] { return recorded.heard() > before + 300ms; }));
    EXPECT_LT(recorded.latest(0, 700), 0.002);
    EXPECT_TRUE(plays(player, player.time() + 0.5));
    player.pause();
    EXPECT_TRUE(pumpUntil([&] { return speakers.latest(700) < 0.002; }));
}

TEST_F(PlayerSoundTest, playsInTimeWithoutAnOutput)
{
    m_content.add({ .frames = 30, .microphone = tone }, 1);
    MediaServer server; // It has no devices.
    Player player;
    player.setItem(item(), 0);
    const auto expectSecond = [&] {
        const auto start = HostClock::now();
        player.play();
        EXPECT_TRUE(pumpUntil([&] { return player.state() == State::Paused; }));
        EXPECT_EQ(player.time(), 1);
        EXPECT_GE(HostClock::now() - start, 1s);
    };
    expectSecond();
    player.play(); // From the beginning again.
    ASSERT_TRUE(plays(player, 0.3));
    server.kill();
    EXPECT_TRUE(plays(player, 1));
    expectSecond();
}

TEST_F(PlayerSoundTest, aThousandCommandsLeaveNothingBehind)
{
    m_content.add({ .frames = 60, .screen = flash, .camera = flash, .microphone = tone, .system = tone }, 2);
    m_content.add({ .frames = 45, .screen = flash, .microphone = tone }, 1.2);
    TestProject other;
    other.add({ .frames = 30, .screen = count }, 1);
    std::vector<std::shared_ptr<const PlayerItem>> items{ makePlayerItem(other.project, other.folder.path(), {}) };
    for (const auto layout : { Layout::screen, Layout::bubble, Layout::camera }) {
        m_content.project.layouts = { { 0, layout, Corner::bottomRight } };
        items.push_back(item());
    }
    QCoreApplication::processEvents(); // Which opens files of its own.
    const auto threads = entries("task");
    const auto files = entries("fd");
    {
        Player player;
        player.setItem(items[0], 0);
        std::mt19937 random(11);
        for (int i = 0; i < 1000; ++i) {
            const double time = static_cast<double>(random() % 350) / 100;
            const auto command = random() % 16;
            if (command < 3)
                player.play();
            else if (command < 5)
                player.pause();
            else if (command < 11)
                player.seek(time);
            else if (command < 15)
                player.setItem(items[random() % items.size()], random() % 2 ? player.time() : time);
            else
                player.clear();
            if (random() % 3 == 0) {
                ASSERT_TRUE(pumpUntil([&] { return !player.isSeeking(); }));
            }
            if (random() % 30 == 0) {
                ASSERT_TRUE(
                    pumpUntil([&, from = player.time()] { return player.state() != State::Playing || player.time() != from; }));
            }
        }
        player.setItem(items[0], 0.5);
        player.pause();
        ASSERT_TRUE(pumpUntil([&] { return !player.isSeeking(); }));
        EXPECT_NEAR(shade(player.picture()), count(15), 2);
    }
    EXPECT_TRUE(pumpUntil([&] { return entries("task") == threads; })) << "a thread that has ended is listed a little longer";
    EXPECT_LE(entries("fd"), files + 4) << "the media library forgets one now and then when it is disconnected";
}

} // namespace vantry
