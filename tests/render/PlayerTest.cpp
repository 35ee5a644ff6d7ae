#include "render/Player.h"
#include "TestProject.h"
#include "render/FrameMaker.h"
#include "support/MovieProbe.h"
#include "support/PumpUntil.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace vantry {

using namespace test;
using namespace std::chrono_literals;
using testing::HasSubstr;

namespace {

using State = Player::State;

/// What a player tells.
struct Told {
    explicit Told(Player& player)
    {
        QObject::connect(&player, &Player::timeChanged, &player, [this](double time) { times.push_back(time); });
        QObject::connect(&player, &Player::pictureChanged, &player, [this, &player] { pictures.push_back(player.picture()); });
        QObject::connect(
            &player, &Player::failed, &player, [this](const QString& text) { failures.push_back(text.toStdString()); });
    }

    std::vector<double> times;
    std::vector<Picture> pictures;
    std::vector<std::string> failures;
};

class PlayerTest : public EventLoopTest {
protected:
    PlayerTest() { m_content.project.layouts = { { 0, Layout::screen, Corner::bottomRight } }; }

    std::shared_ptr<const PlayerItem> item() const { return makePlayerItem(m_content.project, m_content.folder.path(), {}); }

    bool settles()
    {
        return pumpUntil([&] { return !m_player.isSeeking(); });
    }

    int shade() const { return test::shade(m_player.picture()); }

    TestProject m_content;
    Player m_player;
    Told m_told{ m_player };
};

/// All frames, made one after the other, as an export makes them.
std::vector<Picture> exportedFrames(const PlayerItem& item)
{
    FrameMaker maker("test");
    maker.setComposition(item.plan, item.instruction);
    std::vector<Picture> frames;
    for (std::int64_t frame = 0; frame < item.plan.frameCount(); ++frame) {
        maker.ask(frame);
        frames.push_back(maker.take());
    }
    return frames;
}

} // namespace

TEST_F(PlayerTest, showsAtAnyTimeTheVeryFrameThatAnExportHasThere)
{
    // A camera that begins late and ends early, layouts on the move, a clip that is cut within a frame, and one in which none
    // begins.
    m_content.add({ .frames = 40,
                      .screen = count,
                      .camera = [](int frame) { return count(149 - frame); },
                      .cameraStart = 5,
                      .cameraEnd = 20 },
        0.81);
    m_content.add({ .frames = 3, .camera = [](int) { return std::uint8_t(220); } }, 0.015);
    m_content.add({ .frames = 60, .screen = [](int frame) { return count(70 + frame); }, .camera = count, .cameraStart = 9 }, 1.8);
    m_content.project.layouts = { { 0, Layout::bubble, Corner::bottomRight }, { 0.4, Layout::camera, Corner::bottomRight },
        { 1.2, Layout::bubble, Corner::topLeft } };
    m_content.project.screenCrop = CropRect{ 0.05, 0.1, 0.9, 0.8 };
    const auto item = this->item();
    const auto frames = exportedFrames(*item);
    ASSERT_EQ(frames.size(), 79u);
    m_player.setItem(item, 0);
    std::mt19937 random(5);
    for (int i = 0; i < 100; ++i) {
        const auto frame = random() % frames.size();
        for (auto hurried = random() % 4; hurried > 0; --hurried)
            m_player.seek(static_cast<double>(random() % frames.size()) / framesPerSecond);
        // Anywhere within the frame.
        const double time = (static_cast<double>(frame) + static_cast<double>(random() % 10) / 10) / framesPerSecond;
        m_player.seek(time);
        ASSERT_TRUE(settles());
        EXPECT_EQ(m_player.time(), time);
        EXPECT_EQ(m_told.times.back(), time);
        ASSERT_TRUE(areSame(m_player.picture(), frames[frame])) << "frame " << frame;
    }
}

TEST_F(PlayerTest, timesOutsideOfTheProjectShowItsFirstOrItsLastFrame)
{
    m_content.add({ .frames = 30, .screen = count }, 1);
    m_player.setItem(item(), 12.3);
    ASSERT_TRUE(settles());
    EXPECT_EQ(m_player.time(), 12.3);
    EXPECT_EQ(m_player.length(), 1);
    EXPECT_NEAR(shade(), count(29), 2);
    for (const double time : { -3.0, std::nan(""), -std::numeric_limits<double>::infinity() }) {
        m_player.seek(0.5);
        m_player.seek(time);
        ASSERT_TRUE(settles());
        EXPECT_EQ(m_player.time(), 0);
        EXPECT_NEAR(shade(), count(0), 2);
    }
}

TEST_F(PlayerTest, playsInTimeToTheEndAndPausesThere)
{
    m_content.add({ .frames = 45, .screen = count }, 1.5);
    m_player.setItem(item(), 0.5);
    ASSERT_TRUE(settles());
    m_told.times.clear();
    const auto start = HostClock::now();
    m_player.play();
    EXPECT_EQ(m_player.state(), State::Playing);
    ASSERT_TRUE(pumpUntil([&] { return m_player.state() == State::Paused; }));
    EXPECT_GE(HostClock::now() - start, 1s);
    EXPECT_EQ(m_player.time(), 1.5);
    EXPECT_NEAR(shade(), count(44), 2);
    // Each tenth of a second once, unless the machine was too busy for some.
    EXPECT_GE(m_told.times.size(), 4u);
    EXPECT_LE(m_told.times.size(), 11u);
    EXPECT_TRUE(std::ranges::is_sorted(m_told.times));
    EXPECT_EQ(m_told.times.back(), 1.5);

    m_player.play(); // From the beginning.
    EXPECT_EQ(m_player.time(), 0);
    ASSERT_TRUE(pumpUntil([&] { return m_player.time() > 0.1; }));
    m_player.seek(0.7); // From there on.
    EXPECT_EQ(m_player.time(), 0.7);
    ASSERT_TRUE(pumpUntil([&] { return m_player.time() > 0.9; }));
    EXPECT_EQ(m_player.state(), State::Playing);
    m_player.pause();
    const double paused = m_player.time();
    EXPECT_NEAR(shade(), count(static_cast<int>(std::lround(paused * 30))), 2);
    ASSERT_TRUE(settles());
    EXPECT_EQ(m_player.time(), paused);
    EXPECT_NEAR(shade(), count(static_cast<int>(std::lround(paused * 30))), 2);
}

TEST_F(PlayerTest, aRebuildTakesOverWithoutAGapOrAJump)
{
    m_content.add({ .frames = 300, .screen = count }, 10);
    m_player.setItem(item(), 2);
    m_player.play();
    ASSERT_TRUE(pumpUntil([&] { return m_player.time() > 2.1; }));
    m_content.project.layouts = { { 0, Layout::camera, Corner::bottomRight } }; // Without a camera: what is below it.
    m_content.project.screenCrop = CropRect{ 0, 0, 0.5, 0.5 };
    for (int i = 0; i < 5; ++i) {
        const auto before = m_player.picture();
        m_player.setItem(item(), m_player.time());
        EXPECT_EQ(m_player.picture(), before);
        EXPECT_EQ(m_player.state(), State::Playing);
        const double time = m_player.time();
        ASSERT_TRUE(pumpUntil([&] { return m_player.time() > time + 0.1; }));
    }
    EXPECT_EQ(std::ranges::count(m_told.pictures, Picture()), 0);
    EXPECT_TRUE(std::ranges::is_sorted(m_told.times));
    m_player.pause();
    m_player.setItem(item(), 1);
    ASSERT_TRUE(settles());
    EXPECT_EQ(m_player.state(), State::Paused);
    EXPECT_NEAR(shade(), count(30), 2);
}

TEST_F(PlayerTest, withoutAnItemNothingIsShownAndCommandsDoNothing)
{
    m_content.add({ .frames = 60, .screen = count }, 2);
    for (int i = 0; i < 2; ++i) { // Before it had one, and after.
        m_player.play();
        m_player.pause();
        m_player.seek(3);
        EXPECT_EQ(m_player.state(), State::Empty);
        EXPECT_EQ(m_player.time(), 0);
        EXPECT_EQ(m_player.length(), 0);
        EXPECT_FALSE(m_player.picture());
        EXPECT_FALSE(m_player.isSeeking());

        m_player.setItem(item(), 1);
        EXPECT_EQ(m_player.state(), State::Paused);
        ASSERT_TRUE(settles());
        EXPECT_NEAR(shade(), count(30), 2);
        m_player.play();
        m_player.clear();
    }
}

TEST_F(PlayerTest, goesOnOverDamageAndShowsWhatAnExportHasThere)
{
    m_content.add({ .frames = 60, .screen = count, .camera = count }, 2);
    for (const std::string track : { "v:0", "v:1" })
        damagePackets(m_content.folder / "clip-1.mov", track, 0.5, 1.2);
    m_content.project.layouts[0].layout = Layout::bubble;
    const auto item = this->item();
    const auto frames = exportedFrames(*item);
    m_player.setItem(item, 0);
    m_player.play();
    ASSERT_TRUE(pumpUntil([&] { return m_player.state() == State::Paused; }));
    EXPECT_EQ(m_player.time(), 2);
    EXPECT_THAT(m_told.failures, testing::IsEmpty());
    for (const int frame : { 59, 30, 14, 15, 44, 39, 40, 0 }) {
        m_player.seek(frame / 30.0);
        ASSERT_TRUE(settles());
        EXPECT_TRUE(areSame(m_player.picture(), frames[static_cast<std::size_t>(frame)])) << "frame " << frame;
    }
}

TEST_F(PlayerTest, aClipThatCannotBeOpenedIsSaidOnceAndStopsPlayback)
{
    m_content.add({ .frames = 15, .screen = count }, 0.5);
    m_content.add({ .frames = 60, .screen = count }, 2);
    m_player.setItem(item(), 0);
    std::filesystem::remove(m_content.folder / "clip-2.mov");
    m_player.play();
    ASSERT_TRUE(pumpUntil([&] { return m_player.state() == State::Paused; }));
    ASSERT_EQ(m_told.failures.size(), 1u);
    EXPECT_THAT(m_told.failures[0], HasSubstr("Cannot read clip-2.mov"));
    EXPECT_NEAR(shade(), count(14), 2) << "what could be shown stays";
    for (const double time : { 0.7, 0.9, 1.2 }) {
        m_player.seek(time);
        ASSERT_TRUE(settles());
    }
    EXPECT_EQ(m_told.failures.size(), 1u);
    m_player.seek(0.2);
    ASSERT_TRUE(settles());
    EXPECT_NEAR(shade(), count(6), 2) << "the rest can still be seen";
    m_player.play();
    ASSERT_TRUE(pumpUntil([&] { return m_told.failures.size() == 2; }));
}

} // namespace vantry
