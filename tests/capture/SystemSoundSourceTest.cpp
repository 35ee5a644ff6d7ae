#include "capture/SystemSoundSource.h"

#include "capture/SoundPlacement.h"
#include "support/Collected.h"
#include "support/Ear.h"
#include "support/MediaServer.h"
#include "support/TonePlayer.h"

#include <gmock/gmock.h>

#include <mutex>

namespace vantry {

namespace {

using namespace std::chrono_literals;
using test::pumpUntil;
using test::TonePlayer;

class SystemSoundSourceTest : public test::EventLoopTest {
protected:
    SystemSoundSource::Handlers handlers()
    {
        return { .onSound = [this](const SoundSample& sample) { ear.hear(sample.sound.samples, sample.time); },
            .onChange = [this](const std::optional<AppError>& problem) { changes.add(problem ? problem->what() : "again"); } };
    }

    test::Ear ear;
    test::Collected<std::string> changes;
    Worker queue{ "capture" };
};

} // namespace

TEST_F(SystemSoundSourceTest, isNotHeldUpByTheCaptureQueue)
{
    const SystemSoundSource source(queue, handlers());
    const TonePlayer player(TonePlayer::Server::PipeWire, { 700 });
    ASSERT_TRUE(pumpUntil([&] { return ear.latest(0, 700) > TonePlayer::amplitude * 0.9; }));
    std::mutex busy;
    std::unique_lock hold(busy);
    queue.post([&] { const std::lock_guard wait(busy); });
    const auto held = HostClock::now();
    ASSERT_TRUE(pumpUntil([&] { return HostClock::now() > held + 500ms; }));
    hold.unlock();
    queue.sync([] {});
    // What was taken meanwhile is there, stamped with its own time.
    const auto pieces = ear.pieces();
    const auto meanwhile = std::ranges::count_if(pieces, [&](const auto& piece) { return piece.taken > held; });
    EXPECT_GE(meanwhile, 5);
    EXPECT_THAT(changes.all(), testing::IsEmpty());
}

TEST_F(SystemSoundSourceTest, losesNothingOfASoundThatBreaksALongSilence)
{
    const SystemSoundSource source(queue, handlers());
    ASSERT_TRUE(pumpUntil([&] { return ear.heard() > 500ms; }));
    const TonePlayer player(TonePlayer::Server::PipeWire, { 700 });
    ASSERT_TRUE(pumpUntil([&] { return ear.latest(0, 700) > TonePlayer::amplitude * 0.9 && ear.heard() > 1500ms; }));
    const auto pieces = ear.pieces();
    SoundPlacement placement(2);
    std::vector<float> left;
    for (const auto& piece : pieces)
        placement.place({ 2, piece.samples }, piece.taken - pieces.front().taken, [&](const Sound& placed) {
            for (std::size_t i = 0; i < placed.samples.size(); i += 2)
                left.push_back(placed.samples[i]);
        });
    const auto first = std::ranges::find_if(left, [](float sample) { return sample != 0; });
    ASSERT_GT(left.end() - first, 2000);
    for (int i = 0; i < 2000; ++i)
        ASSERT_NEAR(first[i], TonePlayer::amplitude * std::sin(2 * std::numbers::pi * 700 * (i + 1) / sampleRate), 0.001) << i;
}

TEST_F(SystemSoundSourceTest, saysThatTheServerHasGoneOrStoppedAndComesBackWithIt)
{
    auto server = std::make_unique<test::MediaServer>();
    const SystemSoundSource source(queue, handlers());
    server->kill();
    ASSERT_TRUE(pumpUntil([&] { return changes.count() == 1; }));
    EXPECT_THAT(changes.all()[0], testing::StartsWith("Other programs' sound cannot be used: "));
    server->start();
    ASSERT_TRUE(pumpUntil([&] { return changes.count() == 2; }));
    EXPECT_EQ(changes.all()[1], "again");

    server->freeze();
    ASSERT_TRUE(pumpUntil([&] { return changes.count() == 3; }));
    EXPECT_EQ(changes.all()[2], "The media server does not answer");
    server->thaw();
    ASSERT_TRUE(pumpUntil([&] { return changes.count() == 4; }));
    EXPECT_EQ(changes.all()[3], "again");
}

} // namespace vantry
