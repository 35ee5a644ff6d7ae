#include "TestProject.h"
#include "render/AudioMix.h"
#include "render/TrackPictures.h"
#include "render/Video.h"

#include <gmock/gmock.h>

#include <cmath>
#include <span>

namespace vantry {

using namespace test;
using namespace std::chrono_literals;

namespace {

class CompositionTest : public testing::Test, protected TestProject {
protected:
    CompositionPlan build() const { return Video::build(project, folder.path(), { 1280, 720 }); }
};

float tone(int sample)
{
    return 0.5f * std::sin(static_cast<float>(sample) * 0.1f);
}

/// Greys that count down.
std::uint8_t down(int frame)
{
    return static_cast<std::uint8_t>(200 - frame);
}

/// The grey of the picture at every frame of the output.
std::vector<int> greys(const CompositionPlan& plan, TrackKind role)
{
    TrackPictures track(plan.segmentsOf(role), {});
    std::vector<int> result;
    for (std::int64_t frame = 0; frame < plan.frameCount(); ++frame)
        result.push_back(shade(track.at(frame * frameDuration)));
    return result;
}

/// The loudness of each tenth of a second, in output order.
std::vector<float> levels(const CompositionPlan& plan)
{
    AudioMix mix(plan);
    std::vector<float> result;
    for (MediaTime time{}; time < plan.duration; time += 100ms) {
        double sum = 0;
        const auto sound = mix.next(SampleCount(sampleRate / 10));
        for (const float sample : sound.samples)
            sum += sample * sample;
        result.push_back(static_cast<float>(std::sqrt(sum / static_cast<double>(sound.samples.size()))));
    }
    return result;
}

MATCHER(IsCloseGrey, "")
{
    return std::abs(std::get<0>(arg) - std::get<1>(arg)) <= 2;
}

} // namespace

TEST_F(CompositionTest, aFileThatTookThePlaceOfAnotherIsNotTheSame)
{
    add({}, 1);
    const auto before = build().segments;
    EXPECT_EQ(build().segments, before);
    std::filesystem::last_write_time(folder / "clip-1.mov", {});
    EXPECT_NE(build().segments, before);
}

TEST_F(CompositionTest, aTrackThatBeginsLateOrEndsEarlyLeavesAGap)
{
    add({ .frames = 30, .camera = count, .cameraStart = 10 }, 1.0);
    add({ .frames = 30, .camera = count, .cameraStart = 20 }, 0.5);
    project.clips[0].keep = 2; // Longer than the movie: the timeline goes on without it.
    const auto plan = build();
    EXPECT_EQ(plan.duration, 2500ms);
    EXPECT_EQ(plan.segmentsOf(TrackKind::camera).size(), 1u) << "the second camera starts after what is kept";
    std::vector<int> expected;
    for (int frame = 0; frame < 75; ++frame)
        expected.push_back(frame < 10 ? -1 : count(std::min(frame, 29))); // The last one stays.
    EXPECT_THAT(greys(plan, TrackKind::camera), testing::Pointwise(IsCloseGrey(), expected));
}

TEST_F(CompositionTest, everyOutputFrameShowsTheNewestPictureOfItsClip)
{
    add({ .frames = 40, .screen = count }, 0.75);
    add({ .frames = 40, .screen = down }, 1.0);
    // The first clip's 0.75 s are 22.5 frames: frame 22 begins within it, frame 23 half a picture into the second.
    std::vector<int> expected;
    for (int frame = 0; frame < 53; ++frame)
        expected.push_back(frame <= 22 ? count(frame) : down(frame - 23));
    EXPECT_THAT(greys(build(), TrackKind::screen), testing::Pointwise(IsCloseGrey(), expected));
}

TEST_F(CompositionTest, soundsAreMixedAtTheirVolumesEachInItsPlace)
{
    const float unity = 0.5f / std::sqrt(2.0f);
    add({ .frames = 30, .microphone = tone }, 0.5);
    add({ .frames = 30 }, 0.5);
    add({ .frames = 30, .system = tone }, 0.5);
    project.systemVolume = 0.25;
    const auto mixed = levels(build());
    ASSERT_EQ(mixed.size(), 15u);
    for (std::size_t tenth = 1; tenth < 4; ++tenth) {
        EXPECT_NEAR(mixed[tenth], unity, 0.01);
        EXPECT_EQ(mixed[5 + tenth], 0);
        EXPECT_NEAR(mixed[10 + tenth], unity / 4, 0.01);
    }
    project.systemVolume.reset();
    EXPECT_NEAR(levels(build())[12], unity, 0.01);
}

TEST_F(CompositionTest, theMixIsHeldAtFullScale)
{
    const auto loud = [](int sample) { return 0.95f * std::sin(static_cast<float>(sample) * 0.05f); };
    add({ .microphone = loud, .system = loud }, 1);
    AudioMix mix(build());
    const auto sound = mix.next(SampleCount(sampleRate));
    EXPECT_EQ(*std::ranges::max_element(sound.samples), 1.0f);
    EXPECT_EQ(*std::ranges::min_element(sound.samples), -1.0f);
}

TEST_F(CompositionTest, soundIsCutAndJoinedToTheSample)
{
    // From loud to quiet at a join that is not on any AAC frame.
    add({ .microphone = [](int sample) { return 0.8f * std::sin(static_cast<float>(sample) * 0.5f); } }, 0.511);
    add({ .microphone = [](int sample) { return 0.1f * std::sin(static_cast<float>(sample) * 0.5f); } }, 0.5);
    AudioMix mix(build());
    const auto sound = mix.next(SampleCount(48'000));
    const auto join = static_cast<std::size_t>(std::chrono::round<SampleCount>(timelineTime(0.511)).count());
    const auto peak = [&](std::size_t from) { return *std::ranges::max_element(std::span(sound.samples).subspan(2 * from, 32)); };
    EXPECT_GT(peak(join - 16), 0.7f);
    EXPECT_LT(peak(join), 0.2f);
}

TEST_F(CompositionTest, soundFromTheMiddleIsThatOfTheWhole)
{
    add({ .frames = 40, .microphone = tone }, 1.01);
    add({ .frames = 30, .system = tone }, 0.7);
    add({ .frames = 30, .microphone = tone, .system = tone }, 1);
    const auto plan = build();
    const auto whole = AudioMix(plan).next(std::chrono::round<SampleCount>(plan.duration));
    for (const int from : { 1, 1024, 30'001, 48'480, 60'000, 82'081, 100'000, 200'000 }) {
        const auto part = AudioMix(plan, SampleCount(from)).next(SampleCount(5000));
        for (std::size_t i = 0; i < part.samples.size(); ++i) {
            const auto inWhole = 2 * static_cast<std::size_t>(from) + i;
            ASSERT_NEAR(part.samples[i], inWhole < whole.samples.size() ? whole.samples[inWhole] : 0, 1e-3)
                << from << " + " << i / 2;
        }
    }
}

TEST_F(CompositionTest, screenFrameIsTheRecordedScreenAtATime)
{
    EXPECT_FALSE(Video::screenFrame(project, folder.path(), 0));
    add({ .frames = 60, .screen = count }, 1.0);
    add({ .frames = 60, .screen = down }, 2.0);
    const auto at = [&](double time) { return shade(Video::screenFrame(project, folder.path(), time).value()); };
    EXPECT_NEAR(at(-3), count(0), 2);
    EXPECT_NEAR(at(0.51), count(15), 2);
    EXPECT_NEAR(at(1.0), 200, 2);
    EXPECT_NEAR(at(100), 200 - 57, 2);
    project.clips[1].file = "gone.mov";
    EXPECT_FALSE(Video::screenFrame(project, folder.path(), 2));
}

} // namespace vantry
