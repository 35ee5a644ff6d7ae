#include "TestClip.h"
#include "base/AppError.h"
#include "render/AudioMix.h"
#include "render/TrackPictures.h"
#include "render/Video.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cmath>
#include <random>

namespace vantry {

using namespace test;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::ThrowsMessage;

namespace {

class CompositionTest : public testing::Test {
protected:
    void add(const TestClip& clip, double keep)
    {
        const auto name = "clip-" + std::to_string(m_project.clips.size() + 1) + ".mov";
        writeClip(m_folder / name, clip);
        m_project.clips.push_back({ .file = name, .duration = clip.frames / 30.0, .keep = keep, .transcript = {} });
    }

    CompositionPlan build() const { return Video::build(m_project, m_folder.path(), { 1280, 720 }); }

    /// Of the whole clip's beginning.
    Segment segment(const std::string& name, TrackKind role, int track, MediaTime length, MediaTime outputStart) const
    {
        const auto file = m_folder / name;
        return { file, role, track, MediaTime(0), length, outputStart, std::filesystem::last_write_time(file) };
    }

    std::function<void()> building() const
    {
        return [this] { build(); };
    }

    TemporaryFolder m_folder;
    Project m_project;
};

std::uint8_t count(int frame)
{
    return static_cast<std::uint8_t>(40 + frame);
}

float tone(int sample)
{
    return 0.5f * std::sin(static_cast<float>(sample) * 0.1f);
}

/// The grey of the picture at every frame of the output, -1 where there is none.
std::vector<int> greys(const CompositionPlan& plan, TrackKind role)
{
    TrackPictures track(plan.segmentsOf(role), {});
    std::vector<int> result;
    for (std::int64_t frame = 0; frame < plan.frameCount(); ++frame) {
        const auto picture = track.at(frame * frameDuration);
        result.push_back(picture ? picture.plane(PlaneY).row(90)[160] : -1);
    }
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

TEST_F(CompositionTest, clipsPlayBackToBackEachUpToItsKeep)
{
    add({ .frames = 90 }, 2.0);
    add({ .frames = 60, .camera = count, .microphone = tone, .system = tone }, 1.5);
    const auto plan = build();
    EXPECT_EQ(plan.duration, 3500ms);
    EXPECT_EQ(plan.frameCount(), 105);
    EXPECT_EQ(plan.size, (PictureSize{ 1280, 720 }));
    const auto second = [&](TrackKind role, int track) { return segment("clip-2.mov", role, track, 1500ms, 2s); };
    EXPECT_THAT(plan.segments,
        testing::ElementsAre(segment("clip-1.mov", TrackKind::screen, 0, 2s, 0s), second(TrackKind::screen, 0),
            second(TrackKind::camera, 1), second(TrackKind::audio, 2), second(TrackKind::system, 3)));

    std::filesystem::last_write_time(m_folder / "clip-1.mov", {});
    EXPECT_NE(build().segments[0], plan.segments[0]) << "a file that took the place of another";
}

TEST_F(CompositionTest, keepsAreRoundedToTheTimelineSoThatClipsJoinExactly)
{
    add({ .frames = 30 }, 1.0 / 3 + 0.0001);
    add({ .frames = 30 }, 0.5004);
    const auto plan = build();
    EXPECT_EQ(plan.segments[1].outputStart, TimelineTime(200));
    EXPECT_EQ(plan.duration, TimelineTime(500));
}

TEST_F(CompositionTest, aTrackThatBeginsLateOrEndsEarlyLeavesAGap)
{
    add({ .frames = 30, .camera = count, .cameraStart = 10 }, 1.0);
    add({ .frames = 30, .camera = count, .cameraStart = 20 }, 0.5);
    m_project.clips[0].keep = 2; // Longer than the movie: the timeline goes on without it.
    const auto plan = build();
    EXPECT_EQ(plan.duration, 2500ms);
    const auto cameras = plan.segmentsOf(TrackKind::camera);
    ASSERT_EQ(cameras.size(), 1u); // The second camera starts after what is kept.
    EXPECT_EQ(cameras[0].sourceStart, 10 * frameDuration);
    EXPECT_EQ(cameras[0].outputStart, 10 * frameDuration);
    EXPECT_EQ(cameras[0].length, 20 * frameDuration);

    std::vector<int> expected(75, count(29)); // The last one stays.
    for (int frame = 0; frame < 30; ++frame)
        expected[static_cast<std::size_t>(frame)] = frame < 10 ? -1 : count(frame);
    EXPECT_THAT(greys(plan, TrackKind::camera), testing::Pointwise(IsCloseGrey(), expected));
}

TEST_F(CompositionTest, everyOutputFrameShowsTheNewestPictureOfItsClip)
{
    add({ .frames = 40, .screen = count }, 0.75);
    add({ .frames = 40, .screen = [](int frame) { return static_cast<std::uint8_t>(200 - frame); } }, 1.0);
    std::vector<int> expected;
    for (int frame = 0; frame < 22; ++frame)
        expected.push_back(count(frame));
    expected.push_back(count(22)); // Begins within the first clip, whose 0.75 s are 22.5 frames.
    for (int frame = 23; frame < 53; ++frame)
        expected.push_back(200 - (frame - 23)); // 0.5 frames into the source picture.
    const auto plan = build();
    EXPECT_THAT(greys(plan, TrackKind::screen), testing::Pointwise(IsCloseGrey(), expected));
}

TEST_F(CompositionTest, framesInAnyOrderShowWhatTheyShowOneAfterTheOther)
{
    add({ .frames = 45, .camera = count, .cameraStart = 3, .cameraEnd = 20 }, 1.5);
    add({ .frames = 31 }, 1.01);
    add({ .frames = 3, .camera = [](int) { return static_cast<std::uint8_t>(220); } }, 0.02); // No frame begins within it.
    add({ .frames = 60, .camera = [](int frame) { return static_cast<std::uint8_t>(200 - frame); }, .cameraEnd = 50 }, 1.9);
    const auto plan = build();
    const auto inOrder = greys(plan, TrackKind::camera);
    for (const std::size_t kept : { 2u, 12u }) {
        TrackPictures track(plan.segmentsOf(TrackKind::camera), { .kept = kept });
        std::mt19937 random(2);
        for (int i = 0; i < 200; ++i) {
            if (random() % 2) // Somebody was in a hurry.
                track.at(static_cast<std::int64_t>(random() % inOrder.size()) * frameDuration, [&] { return random() % 4 == 0; });
            const auto frame = random() % inOrder.size();
            const auto picture = track.at(static_cast<std::int64_t>(frame) * frameDuration);
            ASSERT_EQ(picture ? picture.plane(PlaneY).row(90)[160] : -1, inOrder[frame]) << "frame " << frame;
        }
    }
}

TEST_F(CompositionTest, aPictureThatStaysIsTheSameObject)
{
    add({ .frames = 30 }, 1.0);
    TrackPictures screen(build().segmentsOf(TrackKind::screen), {});
    const auto first = screen.at(frameDuration);
    EXPECT_EQ(screen.at(frameDuration * 3 / 2), first);
    EXPECT_NE(screen.at(frameDuration * 2), first);
}

TEST_F(CompositionTest, aLoneStereoTrackIsTheSystemSound)
{
    add({ .system = tone }, 1.0);
    const auto plan = build();
    EXPECT_TRUE(plan.hasSound());
    EXPECT_TRUE(plan.segmentsOf(TrackKind::audio).empty());
    EXPECT_EQ(plan.segmentsOf(TrackKind::system).size(), 1u);

    m_project.clips.clear();
    add({}, 1.0);
    EXPECT_FALSE(build().hasSound());
}

TEST_F(CompositionTest, nothingRecordedAndUnreadableClipsAreErrors)
{
    EXPECT_THAT(building(), ThrowsMessage<AppError>("Nothing recorded yet"));
    add({}, 0);
    EXPECT_THAT(building(), ThrowsMessage<AppError>("Nothing recorded yet"));
    add({}, 1);
    std::filesystem::resize_file(m_folder / "clip-2.mov", std::filesystem::file_size(m_folder / "clip-2.mov") / 2);
    EXPECT_THAT(building(), ThrowsMessage<AppError>(HasSubstr("clip-2.mov")));
    m_project.clips.push_back({ .file = "gone.mov", .duration = 1, .keep = 1, .transcript = {} });
    std::swap(m_project.clips[1], m_project.clips[2]);
    EXPECT_THAT(building(), ThrowsMessage<AppError>("Cannot read gone.mov: No such file or directory"));
}

TEST_F(CompositionTest, soundsAreMixedAtTheirVolumesEachInItsPlace)
{
    const float unity = 0.5f / std::sqrt(2.0f);
    add({ .frames = 30, .microphone = tone }, 0.5);
    add({ .frames = 30 }, 0.5);
    add({ .frames = 30, .system = tone }, 0.5);
    m_project.systemVolume = 0.25;
    const auto mixed = levels(build());
    ASSERT_EQ(mixed.size(), 15u);
    for (std::size_t tenth = 1; tenth < 4; ++tenth) {
        EXPECT_NEAR(mixed[tenth], unity, 0.01);
        EXPECT_EQ(mixed[5 + tenth], 0);
        EXPECT_NEAR(mixed[10 + tenth], unity / 4, 0.01);
    }
    m_project.systemVolume.reset();
    EXPECT_NEAR(levels(build())[12], unity, 0.01);
}

TEST_F(CompositionTest, theMixIsHeldAtFullScaleAndNeverTurnsOver)
{
    const auto loud = [](int sample) { return 0.95f * std::sin(static_cast<float>(sample) * 0.05f); };
    add({ .microphone = loud, .system = loud }, 1);
    AudioMix mix(build());
    const auto sound = mix.next(SampleCount(sampleRate));
    EXPECT_EQ(*std::ranges::max_element(sound.samples), 1.0f);
    EXPECT_EQ(*std::ranges::min_element(sound.samples), -1.0f);
    for (std::size_t i = 20'000; i + 2 < 60'000; i += 2)
        EXPECT_LT(std::abs(sound.samples[i + 2] - sound.samples[i]), 0.2f);
}

TEST_F(CompositionTest, soundIsCutAndJoinedToTheSample)
{
    // Steps of level that change at the joins: 0.5 s and a bit, which is not on any AAC frame.
    const auto constantTone = [](float level) {
        return [level](int sample) { return level * std::sin(static_cast<float>(sample) * 0.5f); };
    };
    add({ .microphone = constantTone(0.8f) }, 0.511);
    add({ .microphone = constantTone(0.1f) }, 0.5);
    AudioMix mix(build());
    const auto sound = mix.next(SampleCount(48'000));
    const auto join = static_cast<std::size_t>(std::chrono::round<SampleCount>(timelineTime(0.511)).count());
    const auto peak = [&](std::size_t from, std::size_t to) {
        float greatest = 0;
        for (std::size_t i = from; i < to; ++i)
            greatest = std::max(greatest, std::abs(sound.samples[2 * i]));
        return greatest;
    };
    EXPECT_GT(peak(join - 16, join), 0.7f);
    EXPECT_LT(peak(join, join + 16), 0.2f);
    EXPECT_EQ(sound.samples[2 * join], sound.samples[2 * join + 1]);
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
    EXPECT_FALSE(Video::screenFrame(m_project, m_folder.path(), 0));
    add({ .frames = 60, .screen = count }, 1.0);
    add({ .frames = 60, .screen = [](int frame) { return static_cast<std::uint8_t>(200 - frame); } }, 2.0);
    const auto at = [&](double time) {
        return Video::screenFrame(m_project, m_folder.path(), time).value().plane(PlaneY).row(90)[160];
    };
    EXPECT_NEAR(at(-3), count(0), 2);
    EXPECT_NEAR(at(0.51), count(15), 2);
    EXPECT_NEAR(at(1.0), 200, 2);
    EXPECT_NEAR(at(100), 200 - 57, 2);
    m_project.clips[1].file = "gone.mov";
    EXPECT_FALSE(Video::screenFrame(m_project, m_folder.path(), 2));
}

} // namespace vantry
